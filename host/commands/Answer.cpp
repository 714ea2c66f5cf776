#include "commands/Answer.h"

#include "Failure.h"
#include "Text.h"
#include "commands/ServerNotes.h"
#include "output/Output.h"
#include "output/RowsOutput.h"
#include "tree/ContentWatch.h"
#include "tree/PageSize.h"
#include "tree/RowSource.h"

void writeAnswer(const GlobalOptions &options, const CMPath &path, const Rows &rows, int first,
    const CMError &error)
{
    RowsOutput output(options.json, path, first);
    output.add(rows);
    output.end(error);
}

QString incompleteSentence(int lacking, int rowsCount, const QString &why)
{
    return lacking > 0
        ? Text::tr("The list is incomplete: %Ln of %1 rows are missing. %2", nullptr, lacking)
              .arg(Text::number(rowsCount), why)
        : Text::tr("The list is incomplete. %1").arg(why);
}

namespace {

/// Says that the list isn't whole, in its own document too.
int endIncomplete(RowsOutput *output, int lacking, const QString &why)
{
    const QString sentence = incompleteSentence(lacking, output->rowsCount(), why);
    output->end(incompleteError({sentence}));
    tell(sentence);
    return AnsweredWithError;
}

} // namespace

int writeRowsOf(const GlobalOptions &options, const CMPath &path, RowSource &source,
    const ContentWatch &watch, int first, int step, bool isLong, ServerNotes *notes)
{
    RowsOutput output(options.json, path, first, step, isLong);
    Rows page;
    try {
        while (source.next(&page))
            output.add(page);
    } catch (const Failure &failure) {
        if (output.rows() == 0 || failure.error().name() == QLatin1String("output"))
            throw;
        return endIncomplete(&output, source.lacking(), failure.sentence());
    }
    if (source.lacking() > 0) {
        return endIncomplete(&output, source.lacking(),
            Text::tr("The media server counts them and doesn't give them."));
    }
    // A page is from one moment.
    const QString change = output.rowsCount() > PageSize::first ? watch.change() : QString();
    if (!change.isEmpty())
        return endIncomplete(&output, 0, change);
    output.end(notes ? notes->lacking() : CMError(), source.ofOtherKinds());
    return notes ? notes->tell() : Answered;
}

void writeAnswer(const GlobalOptions &options, const CMPath &path, const OrkaRoles &roles)
{
    if (options.json) {
        writeJson(dataDocument(path, roles));
    } else {
        writeRoles(roles);
    }
}
