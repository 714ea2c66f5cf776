#pragma once

#include <QTest>

/// The columns of a test's table: `columns<QString, int>("path", "kind")`.
template<typename... Types, typename... Names>
void columns(Names... names)
{
    (QTest::addColumn<Types>(names), ...);
}

/// One row of it; `name` is what a failure names.
template<typename... Values>
void row(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}
