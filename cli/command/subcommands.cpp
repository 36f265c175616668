#include "cli/command/subcommands.h"

namespace fi_rotate {

void addSubcommands(CLI::App& app, int& exitStatus) {
    app.set_version_flag("--version", FI_ROTATION_VERSION);
    app.require_subcommand(1);
    addSelect(app, exitStatus);
    addCheck(app, exitStatus);
    addExplain(app, exitStatus);
    addSimulate(app, exitStatus);
}

}  // namespace fi_rotate
