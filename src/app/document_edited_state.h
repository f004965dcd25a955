// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace plyra {

class MorphDocument;

/// Whether a document differs from what was last saved (or from its empty start): its
/// named undo steps are not those it had then, or its codec settings, which change
/// without undo, differ. Undoing back to the saved state makes it unedited again.
/// Threads: main thread only.
class DocumentEditedState {
public:
    /// Takes the document as it is now as the saved state.
    void markSaved(MorphDocument& document);
    /// From now on the document counts as edited until the next save (a new document
    /// made from images, a document whose saved state cannot be reached any more).
    void markEdited() { m_forcedEdited = true; }
    bool isEdited(MorphDocument& document) const;

private:
    std::vector<std::uint64_t> m_savedSteps;
    QString m_savedCodecFormat;
    int m_savedCodecQuality = 0;
    bool m_forcedEdited = false;
};

} // namespace plyra
