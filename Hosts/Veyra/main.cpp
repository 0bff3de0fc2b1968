// The program's entry: reads the command line and runs the command.
#include "Hosts/Common/TileSources.h"
#include "Hosts/Veyra/CommandLine.h"
#include "Hosts/Veyra/OpenCommand.h"
#include "Hosts/Veyra/ScriptCommand.h"
#include "Hosts/Veyra/SnapshotCommand.h"

#include <cstdio>
#include <glib.h>

namespace {

veyra::Outcome run(const veyra::CommandLine& line) {
    switch (line.command) {
    case veyra::CommandLine::Command::Open:
        return veyra::runOpen(line);
    case veyra::CommandLine::Command::Snapshot:
        return veyra::runSnapshot(line);
    case veyra::CommandLine::Command::Script:
        return veyra::runScript(line);
    }
    return {};
}

} // namespace

int main(int argc, char** argv) {
    const auto line = veyra::readCommandLine(argc, argv);
    if (const auto* status = std::get_if<veyra::ExitStatus>(&line))
        return static_cast<int>(*status);
    const auto& command = std::get<veyra::CommandLine>(line);
    // The processes of pages get it from here.
    if (!command.tileSources.empty())
        g_setenv(veyra::TileSourcesVariable, command.tileSources.c_str(), TRUE);
    const veyra::Outcome outcome = run(command);
    if (!outcome.message.empty())
        std::fprintf(stderr, "veyra: %s\n", outcome.message.c_str());
    return static_cast<int>(outcome.status);
}
