#include "commands/Answer.h"

#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/TextOutput.h"

void writeAnswer(
    const GlobalOptions &options, const CMPath &path, const Rows &rows, int first, int step)
{
    if (options.json) {
        writeJson(rowsDocument(path, rows));
    } else {
        writeRows(rows, first, step);
    }
}

void writeAnswer(const GlobalOptions &options, const CMPath &path, const OrkaRoles &roles)
{
    if (options.json) {
        writeJson(dataDocument(path, roles));
    } else {
        writeRoles(roles);
    }
}
