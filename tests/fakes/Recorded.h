#pragma once

#include <functional>
#include <string>

namespace brevanta {

// A fake whose calls a test can put into one order with those of other fakes.
class Recorded {
public:
    std::function<void(const std::string& call)> onCall;

protected:
    void told(const std::string& call) const
    {
        if (onCall)
            onCall(call);
    }
};

}
