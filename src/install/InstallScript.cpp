#include "install/InstallScript.h"

#include "base/Text.h"
#include "install/ScriptFragments.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace brevanta {

namespace {

using namespace ScriptFragments;

// What the service was called in earlier releases.
constexpr std::array<std::string_view, 4> earlierLabels {
    "com.kestrelune.daemon",
    "com.kestrelune.daemon.dev",
    "com.kestrelune.helper",
    "com.brevanta.helper",
};

// The script's status when the service is being removed, beyond those that lockf(1) has for failures of its own, which
// are sysexits(3)'s 64 to 78, and unlike launchctl's 5, which is retried, and the 1 of the tools that handle files.
constexpr int removalBeganStatus = 79;

bool isPlain(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
        || (character >= '0' && character <= '9') || character == '/' || character == '.' || character == '-';
}

// In quotes only if the path holds anything that might mean something to a shell.
std::string quotedIfNeeded(const std::filesystem::path& path)
{
    return std::ranges::all_of(path.string(), isPlain) ? path.string() : quoted(path);
}

// Each runs only if the one before it has succeeded.
std::string chained(std::span<const std::string> commands)
{
    std::string chain;
    for (const auto& command : commands)
        chain += (chain.empty() ? "" : " && ") + command;
    return chain;
}

std::string removeAll(const std::filesystem::path& folder, const std::string& suffix)
{
    std::string command = "(rm -f";
    for (const auto earlier : earlierLabels)
        command += " " + quoted(folder / (std::string(earlier) + suffix));
    return command + " || true)";
}

std::string cleanOut(const InstallPaths& paths)
{
    std::vector<std::string> commands(earlierLabels.size());
    std::ranges::transform(earlierLabels, commands.begin(), bootOut);
    commands.push_back(removeAll(paths.propertyList().parent_path(), ".plist"));
    commands.push_back(removeAll(paths.program().parent_path(), ""));
    return chained(commands);
}

// The copy is made beside its place and then renamed: the service may be running from the old file, and a copy that
// fails must leave that one whole. Renaming would put the copy into a folder that has its name, hence the check.
std::string place(const std::filesystem::path& source, const std::filesystem::path& target, const std::string& mode)
{
    // launchd does not read it as a property list should it be left there: its name has another ending.
    const auto copy = shellQuoted(target.string() + ".installing");
    const auto end = quoted(target);
    const std::array commands {
        "rm -rf " + copy,
        "cp " + quoted(source) + " " + copy,
        "(xattr -d com.apple.quarantine " + copy + " 2>/dev/null || true)",
        "chmod " + mode + " " + copy,
        "chown root:wheel " + copy,
        "{ [ ! -d " + end + " ] || rm -rf " + end + "; }",
        "mv -f " + copy + " " + end,
    };
    return "{ " + chained(commands) + " || { rc=$?; rm -rf " + copy + "; exit $rc; }; }";
}

std::string placeFiles(const InstallPaths& paths)
{
    const std::array commands {
        "mkdir -p " + quotedIfNeeded(paths.program().parent_path()),
        place(paths.bundledProgram, paths.program(), "755"),
        place(paths.bundledPropertyList, paths.propertyList(), "644"),
        "mkdir -p " + quoted(paths.supportFolder()),
    };
    return chained(commands);
}

std::string start(const InstallPaths& paths)
{
    return "n=0; while :; do launchctl bootstrap system " + quoted(paths.propertyList())
        + " && break; rc=$?; if [ $rc -ne 5 ]; then exit $rc; fi; n=$((n+1)); if [ $n -ge "
        + std::to_string(bootstrapAttempts) + " ]; then " + toStandardError(startWasRefused())
        + "; exit $rc; fi; sleep " + formatFixed(secondsBetweenAttempts, 2) + "; done";
}

std::string endIfRemovalBegan(const InstallPaths& paths)
{
    return "if " + removalMarkerIsThere(paths) + "; then " + toStandardError(removalBegan) + "; exit "
        + std::to_string(removalBeganStatus) + "; fi";
}

// A literal in AppleScript may hold anything else as it is, line ends too: AppleScript Language Guide, "text".
std::string appleScriptLiteral(std::string_view text)
{
    std::string literal = "\"";
    for (const char character : text) {
        if (character == '\\' || character == '"')
            literal += '\\';
        literal += character;
    }
    return literal + "\"";
}

}

std::filesystem::path InstallPaths::program() const
{
    return root / "Library/PrivilegedHelperTools/com.brevanta.daemon";
}

std::filesystem::path InstallPaths::propertyList() const
{
    return root / "Library/LaunchDaemons/com.brevanta.daemon.plist";
}

std::filesystem::path InstallPaths::supportFolder() const { return root / "Library/Application Support/Kestrelune"; }

std::filesystem::path InstallPaths::removalLock() const
{
    return root / "Library/Application Support/Kestrelune.removal.lock";
}

std::filesystem::path InstallPaths::removalMarker() const
{
    return root / "Library/Application Support/Kestrelune.removing";
}

std::filesystem::path InstallPaths::lockf() const { return root / "usr/bin/lockf"; }

std::string installScript(const InstallPaths& paths)
{
    // Without the braces the service would be started even if its files could not be placed.
    return underRemovalLock(paths,
        endIfRemovalBegan(paths) + "; " + cleanOut(paths) + " && " + placeFiles(paths) + " && { " + stopService() + "; "
            + start(paths) + "; }");
}

std::string shellQuoted(std::string_view text)
{
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += R"('\'')";
        else
            word += character;
    }
    return word + "'";
}

std::string administratorAppleScript(std::string_view shellText, std::string_view prompt)
{
    return "do shell script " + appleScriptLiteral(shellText) + " with prompt " + appleScriptLiteral(prompt)
        + " with administrator privileges";
}

}
