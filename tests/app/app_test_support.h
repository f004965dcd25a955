// SPDX-License-Identifier: MIT
#pragma once

#include "app/document_prompts.h"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QStringList>
#include <QTemporaryDir>

#include <deque>

namespace plyra::test {

/// Answers the document prompts from a script and records what was asked and shown.
class ScriptedPrompts : public DocumentPrompts {
public:
    struct Script {
        std::deque<SaveAnswer> saveAnswers;
        std::deque<QString> savePaths;
        std::deque<QString> openPaths;
        QStringList saveStarts; // where each save dialog started
        std::deque<RecoveryAnswer> recoveryAnswers;
        QStringList recoveries; // "name | date" of each recovery question
        bool revert = true;
        QStringList asked;  // the display names asked about
        QStringList errors; // "message | reason"
    };

    explicit ScriptedPrompts(Script& script) : m_script(script) { }

    SaveAnswer askToSaveChanges(QWidget*, const QString& displayName) override
    {
        m_script.asked.append(displayName);
        return take(m_script.saveAnswers, SaveAnswer::Cancel);
    }
    bool askToRevert(QWidget*, const QString&) override { return m_script.revert; }
    QString askOpenPath(QWidget*, const QString&) override { return take(m_script.openPaths, QString()); }
    QString askSavePath(QWidget*, const QString& startPath) override
    {
        m_script.saveStarts.append(startPath);
        return take(m_script.savePaths, QString());
    }
    void showError(QWidget*, const QString& message, const QString& reason) override
    {
        m_script.errors.append(message + QStringLiteral(" | ") + reason);
    }

    RecoveryAnswer askToRecover(const QString& displayName, const QDateTime& savedAt) override
    {
        m_script.recoveries.append(displayName + QStringLiteral(" | ") + savedAt.toString(Qt::ISODate));
        return take(m_script.recoveryAnswers, RecoveryAnswer::Later);
    }

private:
    template <typename T>
    static T take(std::deque<T>& queue, T fallback)
    {
        if (queue.empty())
            return fallback;
        T value = queue.front();
        queue.pop_front();
        return value;
    }
    Script& m_script;
};

/// The mnemonic of a menu text ("Save &As…": 'a'), none without one.
inline QChar mnemonicOf(const QString& text)
{
    for (qsizetype i = text.indexOf(QLatin1Char('&')); i >= 0 && i + 1 < text.size(); i = text.indexOf(QLatin1Char('&'), i + 2))
        if (text.at(i + 1) != QLatin1Char('&'))
            return text.at(i + 1).toLower();
    return {};
}

/// "Menu: text" for every item whose mnemonic another item of the same menu has, in the
/// menu bar and in every menu and submenu.
inline QStringList sharedMnemonics(const QList<QAction*>& items, const QString& menuName)
{
    QStringList shared;
    QList<QChar> seen;
    for (QAction* item : items) {
        if (item->isSeparator())
            continue;
        const QChar key = mnemonicOf(item->text());
        if (!key.isNull() && seen.contains(key))
            shared.append(menuName + QStringLiteral(": ") + item->text());
        seen.append(key);
        if (item->menu())
            shared += sharedMnemonics(item->menu()->actions(), item->text());
    }
    return shared;
}

/// Writes a PNG of the given size with a gradient, for images of test documents.
inline QString writeTestImage(const QTemporaryDir& dir, const QString& name, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, 128));
    const QString path = dir.filePath(name);
    image.save(path, "PNG");
    return path;
}

} // namespace plyra::test

#include "app/update_alerts.h"

namespace plyra::test {

/// Update alerts that show nothing.
class SilentUpdateAlerts : public UpdateAlerts {
public:
    bool askToOpenHomePage(const QString&, const QString&) override { return false; }
    void showUpToDate() override { }
    void showNoUpdateAddress() override { }
    void openHomePage(const QUrl&) override { }
};

} // namespace plyra::test
