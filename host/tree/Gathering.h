#pragma once

#include "Failure.h"
#include "tree/KnownFiles.h"
#include "tree/PageSize.h"
#include "tree/PlayableRow.h"

#include <api/core/CMPath.h>

#include <QHash>
#include <QSet>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class ContentWatch;
class Progress;
class Session;

/// Everything that can be played below some nodes, gathered by listing them: depth first, in the
/// order of their servers, each folder and each file once, however often it is met.
///
/// A folder that can't be read is left out and kept for the end; a server that doesn't answer isn't
/// asked again.
class Gathering
{
public:
    using Kinds = QSet<int>;
    using Take = std::function<void(const OrkaPlayListItem &)>;

    /// `kinds` are values of PlayableKind; every other row is counted and left out.
    Gathering(Session &session, const Kinds &kinds, Take take);
    ~Gathering();

    /// A node that isn't a container is taken whatever its kind, since it was named. `name` is what
    /// people call it. Throws InterruptedBySignal on Ctrl-C, and Failure where an item can't be
    /// taken.
    void add(const CMPath &path, const QString &name);
    /// After the last node: looks whether what was read has changed meanwhile.
    void finish();

    int items() const { return m_items; }
    /// Rows of kinds that aren't wanted.
    int otherKinds() const { return m_otherKinds; }
    /// What couldn't be read, each in a sentence.
    const QVector<Failure> &failures() const { return m_failures; }

private:
    struct Folder;

    OrkaRoles readNode(const CMPath &path);
    void walk(const CMPath &path, const QString &name);
    bool readMore(Folder *folder);
    void open(const OrkaRoles &row, const QString &parentName);
    void push(const CMPath &path, const QString &name);
    void takeRow(const OrkaRoles &row);
    void takeItem(const OrkaRoles &row, const KnownFiles::PagePointer &page);
    void askSizes(KnownFiles::Page *page);
    void tellWithoutAddress(const QString &place);
    OrkaPlayListItem prepared(const OrkaRoles &row);
    void fail(const CMPath &path, const Failure &failure);
    void tellProgress();

    Session &m_session;
    const Kinds m_kinds;
    const Take m_take;
    std::unique_ptr<Progress> m_progress;
    std::vector<std::unique_ptr<Folder>> m_folders;
    QHash<QString, std::shared_ptr<PageSize>> m_pageSizes;
    QSet<QString> m_visited;
    KnownFiles m_known;
    /// The media service's objects of servers, by the base of their path.
    QHash<QString, QString> m_serviceObjects;
    /// By the base of their server's path.
    QHash<QString, std::shared_ptr<ContentWatch>> m_watches;
    /// Bases of servers that don't answer.
    QSet<QString> m_silent;
    QVector<Failure> m_failures;
    /// Titles of what can't be played, each once.
    QStringList m_withoutAddress;
    int m_items = 0;
    int m_otherKinds = 0;
    int m_foldersRead = 0;
};
