// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "model/line_color.h"
#include "model/morph_editor_data_source.h"
#include "model/morph_line.h"
#include "model/movie_settings.h"
#include "model/track_image.h"
#include "platform/output_path_guard.h"
#include "platform/plist/property_list.h"
#include "platform/undo_manager.h"

#include <QSizeF>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace plyra {

/// The name of the notification posted when the selection or the line colour changes
/// (only drawing is stale).
inline constexpr const char* kSelectionUpdatedNotification = "selectionUpdated";
/// The name of the notification posted when the document becomes edited or unedited.
inline constexpr const char* kEditedStateChangedNotification = "editedStateChanged";

/// The morph document: the two track images by location, the lines and their
/// selection, the colour lines are drawn in, the output frame size and the movie codec
/// settings. Every edit of lines, images and colour registers its inverse with the
/// document's undo manager, and undoing or redoing it puts back the selection of that
/// moment; selecting alone is no undo step. Changes post "objectsUpdated" or
/// "selectionUpdated", coalesced per pass of the main run loop, with the document as
/// object: observers follow one document by passing notificationObject() to addObserver().
/// Threads: main thread only. The frame engine gets rendering images and copies of the
/// lines, never the document.
class MorphDocument : public MorphEditorDataSource {
public:
    MorphDocument();
    ~MorphDocument() override;
    MorphDocument(const MorphDocument&) = delete;
    MorphDocument& operator=(const MorphDocument&) = delete;

    UndoManager& undoManager() override { return m_undoManager; }
    const void* notificationObject() const override { return this; }

    // ---- lines and selection ----
    const std::vector<MorphLine::Ptr>& morphLines() const override { return m_morphLines; }
    /// Joins the line to the first line whose free end coincides with one of its ends
    /// (at both tracks), inserts it, and registers "New Line".
    void insertObjectInMorphLinesAtIndex(const MorphLine::Ptr& line, std::size_t index) override;
    void addMorphLine(const MorphLine::Ptr& line);
    /// Cuts the line out of its chain, removes it and deselects it; "Delete Line".
    /// Undoing brings back its index, its selection and its joins.
    void removeObjectFromMorphLinesAtIndex(std::size_t index) override;
    /// Does nothing for a line that is not in the document.
    void deleteMorphLine(const MorphLine::Ptr& line);

    const std::vector<MorphLine::Ptr>& selectedLines() const override { return m_selectedLines; }
    bool isLineSelected(const MorphLine* line) const override;
    /// Does nothing for a line that is already selected.
    void insertObjectInSelectedLinesAtIndex(const MorphLine::Ptr& line, std::size_t index) override;
    /// Does nothing for an index not below the selection's count.
    void removeObjectFromSelectedLinesAtIndex(std::size_t index) override;
    /// Removes the selected lines from the last to the first, then selects lines in order.
    void setSelectedLines(const std::vector<MorphLine::Ptr>& lines) override;

    // ---- images (track 0 for 0, track 1 for any other value) ----
    /// Sets where the track's image is read from (empty for none); "Set Image". The
    /// first image that loads fixes an unset frame size. nameInPackage is the name a
    /// package records for a file inside it, which saving keeps for an image that
    /// cannot be read.
    void setImageFromURL(const QString& path, unsigned track, const QString& nameInPackage = {});
    /// setImageFromURL() for a file that reads as an image; nothing changes otherwise.
    bool setImageFromFile(const QString& path, unsigned track, QString* error) override;
    QString imageURLInTrack(unsigned track) const;
    /// The name given with the track's location; empty when none was.
    QString imageNameInPackageInTrack(unsigned track) const;
    /// Loaded on first request; nothing (and a log line) when the file gives no image.
    std::optional<DisplayImage> imageInTrack(unsigned track) const override;
    /// The image the frame engine renders from (premultiplied RGBA bitmap, origin bottom
    /// left); a null Image (and a log line) when the file gives no image.
    Image ciimageInTrack(unsigned track) const;
    /// Why the track's file gave no image at its last load; none when it loaded, was not
    /// tried or the track has no file.
    std::optional<ImageLoadFailure> imageFailureInTrack(unsigned track) const;
    /// Track 1 for the value 1, track 0 otherwise. A track without a ratio borrows the
    /// other track's; with neither it is 1.0.
    float aspectRatioInTrack(unsigned track) const;

    // ---- settings ----
    /// The stored colour, or LineColor::defaultColor() when none is stored.
    LineColor::Ptr lineColor() const override;
    /// The document's own colour; null while it uses the default one.
    const LineColor::Ptr& storedLineColor() const { return m_lineColor; }
    /// Registers "Change colour" unless color is the very object already stored.
    void setLineColor(const LineColor::Ptr& color);
    /// Stores a colour read from a file: no undo step, no notification.
    void restoreLineColor(const LineColor::Ptr& color) { m_lineColor = color; }

    QSizeF frameSize() const { return m_frameSize; }
    /// Undoable (without an action name of its own); posts nothing.
    void setFrameSize(const QSizeF& size);

    const QString& codecFormat() const { return m_codecFormat; }
    void setCodecFormat(const QString& format);
    int codecQuality() const { return m_codecQuality; }
    void setCodecQuality(int quality);

    // ---- edited state ----
    /// Whether the document differs from what was last saved or read (or from its empty
    /// start): its named undo steps are not those it had then, or a change without undo
    /// (the codec settings) happened since. Undoing back to the saved state makes it
    /// unedited again. Posts "editedStateChanged" whenever the answer changes.
    bool isEdited() const;
    /// Takes the document as it is now as its saved state; writing and reading it do so.
    void markSaved();
    /// From now on the document counts as edited until the next save (a new document
    /// made from images, a recovered one).
    void markEdited();
    /// Grows with every change that a save would write (each undo step, undo, redo,
    /// change without undo), so that a copy can tell whether it is current.
    std::uint64_t changeCount() const { return m_changeCount; }

    /// The movie the document renders, as the movie window last set it; none while the
    /// document has never had settings of its own (a movie then takes the defaults).
    const std::optional<MovieSettings>& movieSettings() const { return m_movieSettings; }
    /// Stores the settings unless they equal the stored ones; "Change Movie Settings",
    /// posts "objectsUpdated".
    void setMovieSettings(const std::optional<MovieSettings>& settings);

    // ---- package on disk ----
    /// Fills the document from a package directory. False, with a reason in error, when
    /// its "info.plist" cannot be read as a dictionary. Registers no undo steps.
    bool readFromFile(const QString& path, QString* error = nullptr);
    /// Writes the document as a package directory, replacing what is at path only once
    /// the new package is complete. False, with a reason in error, when it could not.
    bool writeToFile(const QString& path, QString* error = nullptr);
    /// The package the document was read from or last written to; empty for a new one.
    const QString& fileLocation() const { return m_fileLocation; }
    /// Makes the document belong to another package (empty for none) without reading or
    /// writing: a recovered document belongs to the package it was recovered for.
    void setFileLocation(const QString& path) { m_fileLocation = path; }
    /// The keys of the package's "info.plist" that reading did not take up, which
    /// writing puts back unchanged.
    const PropertyList::Dictionary& foreignPackageInfo() const { return m_foreignPackageInfo; }
    void setForeignPackageInfo(PropertyList::Dictionary info) { m_foreignPackageInfo = std::move(info); }
    /// A guard for output files that refuses writing into the document's package or over
    /// the image files it reads, besides anything that is not a regular file.
    OutputPathGuard outputGuard() const;

private:
    void setImageFromURL(const QString& path, unsigned track, const QString& nameInPackage, std::optional<DisplayImage> preloaded);
    TrackImage& trackFor(unsigned track) const { return m_tracks[track == 0 ? 0 : 1]; }
    void joinToCoincidingLine(const MorphLine::Ptr& line);
    void deselectLine(const MorphLine::Ptr& line);
    /// The selection as it was, less the lines no longer in the document.
    void restoreSelection(const std::vector<MorphLine::Ptr>& lines);
    void registerUndo(std::function<void()> action, const char* actionName = nullptr);
    void postObjectsUpdated();
    void postSelectionUpdated();
    void noteChange();
    void noteChangeWithoutUndo();

    UndoManager m_undoManager;
    // The images are caches of the locations, loaded by the const getters.
    mutable std::array<TrackImage, 2> m_tracks;
    std::vector<MorphLine::Ptr> m_morphLines;
    std::vector<MorphLine::Ptr> m_selectedLines;
    LineColor::Ptr m_lineColor;
    QSizeF m_frameSize{0.0, 0.0};
    QString m_codecFormat;
    int m_codecQuality = 0;
    QString m_fileLocation;
    PropertyList::Dictionary m_foreignPackageInfo;
    // The edited state: the named undo steps at the last save, and what happened since
    // that the undo history does not show.
    std::vector<std::uint64_t> m_savedSteps;
    bool m_changedWithoutUndo = false;
    bool m_forcedEdited = false;
    bool m_lastEdited = false;
    std::uint64_t m_changeCount = 0;
    std::optional<MovieSettings> m_movieSettings;
};

} // namespace plyra
