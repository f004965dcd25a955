// SPDX-License-Identifier: MIT
#include "app/document_edited_state.h"

#include "model/morph_document.h"

namespace plyra {

void DocumentEditedState::markSaved(MorphDocument& document)
{
    m_savedSteps = document.undoManager().namedUndoStepIds();
    m_savedCodecFormat = document.codecFormat();
    m_savedCodecQuality = document.codecQuality();
    m_forcedEdited = false;
}

bool DocumentEditedState::isEdited(MorphDocument& document) const
{
    return m_forcedEdited || document.undoManager().namedUndoStepIds() != m_savedSteps
        || document.codecFormat() != m_savedCodecFormat || document.codecQuality() != m_savedCodecQuality;
}

} // namespace plyra
