#include "chain/RunningServices.h"
#include "commands/Command.h"
#include "output/Output.h"

namespace {

class Stop : public Command
{
public:
    explicit Stop(CLI::App &app)
        : Command(app, "stop", "Ends the media service that a command left running", "orka stop")
    {
    }

    int run(const GlobalOptions &options) override
    {
        if (!endRunningServices(options))
            tell(QStringLiteral("No media service is running, so there is nothing to end."));
        return 0;
    }
};

} // namespace

CommandPointer makeStop(CLI::App &app)
{
    return std::make_unique<Stop>(app);
}
