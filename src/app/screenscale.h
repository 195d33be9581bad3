#pragma once

class QByteArray;

/// How many pixels of the screen a pixel of the window takes.
namespace screenscale {

/// Has the window follow the density that the desktop is set to, fractions included. Call it before
/// the application is made.
void followDesktop();

/// Whether the X server's resources, "name: value" a line, name a density.
bool nameDensity(const QByteArray& resources);

} // namespace screenscale
