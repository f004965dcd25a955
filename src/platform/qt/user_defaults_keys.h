// SPDX-License-Identifier: MIT
#pragma once

/// The keys of the user defaults, all in one place (the README lists them for users).
namespace plyra::DefaultsKey {

/// Boolean, true unless the user says no: look for a newer version at launch.
inline constexpr char kCheckForUpdates[] = "CheckForUpdates";
/// Text: the address of the version list; nothing is checked without one.
inline constexpr char kVersionCheckURL[] = "versionCheckURL";
/// Boolean, true unless the user says no: document windows have a textured background.
inline constexpr char kTexturedWindows[] = "texturedWindows";
/// Four-character code of the codec last chosen, for new documents ("mp4v" without one).
inline constexpr char kCodecFormat[] = "codecFormat";
/// 0 to 1023: the quality last chosen, for new documents (768 without one).
inline constexpr char kCodecQuality[] = "codecQuality";
/// Integer: the grid spacing of the warp field; below 2 or absent, 7 (6 for the preview).
inline constexpr char kMaxSampleInterval[] = "maxSampleInterval";
/// List of paths: the documents opened last, newest first.
inline constexpr char kRecentDocuments[] = "recentDocuments";
/// Point: where the user last put the inspector panel, on the screen.
inline constexpr char kInspectorPanelPosition[] = "inspectorPanelPosition";
/// Boolean, true unless the user says no: a new line takes its predicted place in the
/// other image.
inline constexpr char kPredictCounterparts[] = "predictCounterparts";
/// List of item identifiers under "IDENTIFIER/toolbarItems": the user's arrangement of a
/// toolbar; IDENTIFIER names the kind of window.
inline constexpr char kToolbarItems[] = "%1/toolbarItems";

} // namespace plyra::DefaultsKey
