#include "Text.h"
#include "chain/RunningServices.h"
#include "commands/Command.h"
#include "output/JsonOutput.h"
#include "output/Output.h"

namespace {

class Stop : public Command
{
public:
    explicit Stop(CLI::App &app)
        : Command(app, "stop", Text::mark("Ends the media service that a command left running"),
            "orka stop")
    {
    }

    int run(const GlobalOptions &options) override
    {
        const bool hasEnded = endRunningServices(options);
        if (!hasEnded)
            tell(Text::tr("No media service is running, so there is nothing to end."));
        if (options.json) {
            OrkaHash document;
            document.setValue(QStringLiteral("ended"), hasEnded);
            writeJson(document);
        }
        return 0;
    }
};

} // namespace

CommandPointer makeStop(CLI::App &app)
{
    return std::make_unique<Stop>(app);
}
