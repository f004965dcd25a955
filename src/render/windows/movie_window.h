// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/render_window.h"

namespace plyra {

class MovieExport;
class MoviePlayer;
class MovieRenderController;
class MovieSettingsSheet;

/// The movie window: the morph rendered as a movie that grows in a temporary file while
/// its frames finish, shown in a player that steps forward as frames arrive and plays
/// from the start once the movie is complete, saved as a self-contained movie. Its
/// settings sheet adds the timing (easing, holds, ping-pong), the codec and the quality;
/// the movie's settings are kept in the document, so that reopening it renders the same
/// movie, and the codec also in the user defaults for new documents. Each render writes a
/// fresh temporary movie; the previous one is closed and removed, and so is the last
/// when the window closes. Save writes QuickTime, MPEG-4, WebM, animated GIF or WebP, or
/// a folder of numbered PNG frames: straight from the movie shown when its frames are
/// what the file keeps, else through a render of its own (MovieExport).
/// Threads: main thread.
class MovieWindow : public RenderWindow {
    Q_OBJECT

public:
    explicit MovieWindow(MorphDocument& document, QWidget* parent = nullptr);
    ~MovieWindow() override;

    MovieRenderController& renderer() const { return m_renderer; }
    MoviePlayer* player() const { return m_player; }

    /// The player's picture: the controller bar under it is not part of the movie.
    QSize viewSize() const override;
    /// Sizes the window so that the picture shows the movie at its own size (within the
    /// screen).
    void sizeWindowToMovie();

    /// "NAME rendering movie (45%)" while frames are outstanding, else "NAME rendered movie".
    static QString titleForProgress(const QString& name, float progress);
    /// A complete movie on show that was not saved since it was rendered.
    bool hasUnsavedResult() const override;
    /// The numbered frames a save into a folder writes: "DIR/NAME/NAME_0001.png" and on.
    static QString sequencePatternForFolder(const QString& folder, std::size_t frameCount);
    /// The export that renders for a save; null while none runs.
    MovieExport* runningExport() const { return m_export; }

protected:
    void takeDocumentSettings() override;
    bool startRender() override;
    void showPolledResults() override;
    QString windowTitleForDocumentDisplayName(const QString& name) const override;
    QString unsavedResultQuestion(const QString& name) const override;
    RenderSettingsSheet* createSettingsSheet() override;
    void prepareSettingsSheet() override;
    void applySheetSettings() override;
    SaveFileTypes saveFileTypes() const override;
    bool saveRenderedFramesToPath(const QString& path, QString* error) override;
    void windowClosed() override;
    void screenChanged() override;

private:
    // The base owns the controller; the window keeps its own kind of it.
    MovieWindow(MorphDocument& document, MovieRenderController* renderer, QWidget* parent);
    void updateAspectMode();
    QSize fittedPictureSize(FrameSize movieSize) const;
    bool startExport(const QString& path, QString* error);
    void exportFinished(bool saved, const QString& path, const QString& reason);

    MovieRenderController& m_renderer;
    MovieSettingsSheet* m_sheet = nullptr;
    MoviePlayer* m_player = nullptr;
    MovieExport* m_export = nullptr;
    bool m_followsDocument = false;
    int m_framesShown = 0;
    bool m_complete = false;
    bool m_saved = false;
};

} // namespace plyra
