#pragma once

namespace Zamt::Host {

/// Registers the display that draws a cloud into a PNG file.
void registerPictureDisplay();

} // namespace Zamt::Host
