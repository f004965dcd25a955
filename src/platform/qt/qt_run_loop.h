// SPDX-License-Identifier: MIT
#pragma once

namespace plyra {

/// Binds the main RunLoop to the Qt event loop: work registered for the end of a pass
/// (coalesced notifications, closing the undo group of an event) runs at the next pass
/// of the Qt loop. Call once on the main thread after the QCoreApplication exists.
void bindRunLoopToQtEventLoop();

} // namespace plyra
