#include "daemon/ScriptedServer.h"
#include "diagnosis/DiagnosisText.h"
#include "functional/support/TemporaryDirectory.h"
#include "posix/LocalSocketPosix.h"
#include "posix/PathFactsPosix.h"
#include "posix/ThreadSignals.h"
#include "support/DiagnosisBench.h"
#include "support/NotRoot.h"

#include <algorithm>
#include <fstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace brevanta {

namespace {

// A socket of which nobody takes connections, unless it is told to listen.
FileDescriptor bound(const std::string& path)
{
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::ranges::copy(path, address.sun_path);
    EXPECT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(::chmod(path.c_str(), 0666), 0);
    return socket;
}

const Finding& socketFindingAt(const std::string& path, Diagnosis& diagnosis)
{
    DiagnosisBench bench(path);
    LocalSocketPosix sockets;
    bench.connector = &sockets;
    bench.lookAtPath = pathFacts;
    bench.clients.result = false;
    bench.finish();
    EXPECT_EQ(bench.ends, 1) << path;
    diagnosis = diagnose(bench.facts);
    return *std::ranges::find(diagnosis.findings, "service.socket", &Finding::key);
}

}

TEST(DiagnosisSocketTest, WhatIsAtTheSocketsPlaceIsCalledWhatItIs)
{
    ignoreBrokenPipeSignal();
    const functional::TemporaryDirectory folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const auto at = [&](const char* name) { return (folder.path() / name).string(); };
    const ScriptedServer garbles([](const ScriptedServer::Peer& peer) {
        static_cast<void>(peer.readRequest());
        peer.write("nonsense\n");
    });
    const ScriptedServer leaves([](const ScriptedServer::Peer&) { });
    const auto stale = bound(at("stale"));
    const auto closed = bound(at("closed"));
    ASSERT_EQ(::listen(closed.get(), 1), 0);
    ASSERT_EQ(::chmod(at("closed").c_str(), 0), 0);
    std::ofstream(at("file")) << "text";
    std::filesystem::create_directory(at("folder"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", at("link"));
    std::filesystem::create_directory(at("shut"));
    std::filesystem::permissions(at("shut"), std::filesystem::perms::none);

    struct Case {
        std::string path;
        std::string state;
        std::string words;
    };
    const Case cases[] {
        { at("nothing"), "noSocket", "there is no socket at " },
        { at("file") + "/below", "noSocket", "there is no socket at " },
        { at("stale"), "refused", "nothing accepts connections at " },
        { at("closed"), "notPermitted", " may not be opened by your user" },
        { at("shut") + "/socket", "notPermitted", " may not be opened by your user" },
        { at("file"), "notASocket", " is no socket" },
        { at("folder"), "notASocket", " is no socket" },
        { at("pipe"), "notASocket", " is no socket" },
        { at("link"), "notASocket", " is no socket" },
        { garbles.path(), "noUsableAnswer", " gave no usable answer: it is empty, or not JSON" },
        { leaves.path(), "noUsableAnswer", " gave no usable answer" },
    };
    for (const auto& [path, state, words] : cases) {
        Diagnosis diagnosis;
        const bool isServer = state == "noUsableAnswer"; // Whose folder is for its owner alone.
        const auto somebody = isServer ? nullptr : std::make_unique<NotRoot>();
        const auto& finding = socketFindingAt(path, diagnosis);
        EXPECT_EQ(finding.state, state) << path;
        EXPECT_NE(finding.text.find(words), std::string::npos) << finding.text;
        EXPECT_NE(finding.text.find(path), std::string::npos) << finding.text;
        // What is no socket has to go before a service can take its place.
        const auto remedy = diagnosis.remedy().value_or("");
        EXPECT_EQ(remedy.find("delete " + path) != std::string::npos, state == "notASocket") << remedy;
        EXPECT_NE(remedy.find("⚠ Restart Blocking Service…"), std::string::npos) << remedy;
    }
    std::filesystem::permissions(at("shut"), std::filesystem::perms::all);
}

}
