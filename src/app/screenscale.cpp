#include "screenscale.h"

#include <QByteArrayList>
#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace {

constexpr uint32_t mostWords = 16384; // of the resources, 4 bytes each

struct Free {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc): the library's
};

// What the desktop keeps on the first screen; empty where there is no X server or nothing is kept.
QByteArray resourcesOfDisplay()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        return {};
    }
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> display(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(display.get()) != 0) {
        return {};
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(display.get())).data;
    const auto request = xcb_get_property(
        display.get(), 0, screen->root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, mostWords);
    const std::unique_ptr<xcb_get_property_reply_t, Free> reply(
        xcb_get_property_reply(display.get(), request, nullptr));
    if (!reply) {
        return {};
    }
    return { static_cast<const char*>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get()) };
}

} // namespace

bool screenscale::nameDensity(const QByteArray& resources)
{
    for (const QByteArray& line : resources.split('\n')) {
        const int colon = line.indexOf(':');
        if (line.left(colon).trimmed() == "Xft.dpi" && line.mid(colon + 1).toDouble() > 0.0) {
            return true;
        }
    }
    return false;
}

// Where no density is set, the toolkit would take it from the millimetres that the X server names,
// which are rounded or made up: a screen of 1366 x 768 would be scaled by 1.001. There one pixel
// stays one pixel. What QT_SCALE_FACTOR and its kin ask for counts in any case.
void screenscale::followDesktop()
{
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    if (nameDensity(resourcesOfDisplay())) {
        QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    }
}
