#pragma once

#include "support/WebBench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace brevanta {

class WebViewBridgeTest : public testing::Test, protected WebBench {
protected:
    [[nodiscard]] bool hasLine(const std::string& line) const
    {
        return std::ranges::find(log.lines, line) != log.lines.end();
    }
    // How often an event has been sent into the page.
    [[nodiscard]] std::ptrdiff_t eventCount(const std::string& name) const
    {
        return std::ranges::count_if(
            webView.scripts, [&](const std::string& script) { return script.contains("'" + name + "'"); });
    }
    WebNavigationDelegate& navigation() { return webView.configuration->navigationDelegate; }
};

}
