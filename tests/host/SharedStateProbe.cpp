// Replaces the shared state in the folder that it is given, over and over until it is killed, by turns with each of two
// records. Writes a byte to standard output after each write.
#include "daemon/SharedBlockStateWriter.h"
#include "fakes/ManualExecutor.h"
#include "host/SharedStateRecords.h"
#include "posix/FileStorePosix.h"

#include <cstdlib>
#include <unistd.h>

using namespace brevanta;

int main(int argc, char** argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    const std::filesystem::path folder = argv[1];
    const std::shared_ptr<const BlockingStatus> statuses[] = { smallStatus(), largeStatus() };
    ManualExecutor queue;
    FileStorePosix files;
    SharedBlockStateWriter writer({ .queue = queue,
        .files = files,
        .container = [&] { return folder; },
        .fileName = std::string(sharedBlockStateFileName("prod")) });
    while (true) {
        for (const auto& status : statuses) {
            writer.submit(status);
            queue.runAll();
            if (::write(STDOUT_FILENO, ".", 1) != 1)
                return EXIT_FAILURE; // Nobody is left to kill this.
        }
    }
}
