// SPDX-License-Identifier: MIT

// How long programs take from exec to a painted window of 64 × 64 on screen, as another client of
// the X server sees it.
//
//   StartBench RUNS PROGRAM PROGRAM …
//
// The programs take turns, so that whatever slows the computer down meanwhile slows all of them
// down. Prints one line per start: the program's number, counted from 0, the milliseconds until the
// window was mapped and until something was painted in it. A first round is not printed: it warms
// the caches.

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::uint16_t windowSize = 64;
constexpr std::uint32_t wallpaper = 0x00C0407F; // A colour that no program paints.
constexpr auto deadline = 20s;

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> reply(T *answer)
{
    return {answer, &std::free};
}

struct Place {
    std::int16_t x = 0;
    std::int16_t y = 0;
};

struct Times {
    double mapped = 0;
    double painted = 0;
};

class Screen {
public:
    Screen()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(m_connection) != 0) {
            std::fputs("StartBench needs an X server.\n", stderr);
            std::exit(2);
        }
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const std::uint32_t values[] = {wallpaper, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                                     values);
        xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
        xcb_flush(m_connection);
    }

    /// Where a window of the size that is awaited was mapped, if one was since the last call.
    std::optional<Place> nextMapped()
    {
        while (const auto event = reply(xcb_poll_for_event(m_connection))) {
            if ((event->response_type & 0x7F) != XCB_MAP_NOTIFY) {
                continue;
            }
            const auto window = reinterpret_cast<xcb_map_notify_event_t *>(event.get())->window;
            const auto geometry = reply(xcb_get_geometry_reply(
                m_connection, xcb_get_geometry(m_connection, window), nullptr));
            if (geometry && geometry->width == windowSize && geometry->height == windowSize) {
                return Place{geometry->x, geometry->y};
            }
        }
        return std::nullopt;
    }

    /// Whether anything but the wallpaper is seen there.
    bool isPainted(Place place)
    {
        const auto image = reply(
            xcb_get_image_reply(m_connection,
                                xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root,
                                              place.x, place.y, windowSize, windowSize, 0xFFFFFFFF),
                                nullptr));
        if (!image) {
            return false;
        }
        const std::span pixels(
            reinterpret_cast<const std::uint32_t *>(xcb_get_image_data(image.get())),
            std::size_t{windowSize} * windowSize);
        for (const std::uint32_t pixel : pixels) {
            if ((pixel & 0x00FFFFFF) != wallpaper) {
                return true;
            }
        }
        return false;
    }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
};

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

Times start(Screen &screen, char *program)
{
    while (screen.nextMapped()) {
        // What an earlier program left in the queue is not this one's.
    }
    const auto begin = Clock::now();
    const pid_t child = vfork();
    if (child == 0) {
        char *const arguments[] = {program, nullptr};
        execv(program, arguments);
        _exit(127);
    }

    Times times;
    std::optional<Place> place;
    while (true) {
        if (!place) {
            place = screen.nextMapped();
            times.mapped = milliseconds(Clock::now() - begin);
        }
        if (place && screen.isPainted(*place)) {
            times.painted = milliseconds(Clock::now() - begin);
            break;
        }
        if (Clock::now() - begin > deadline || waitpid(child, nullptr, WNOHANG) != 0) {
            std::fprintf(stderr, "%s showed no window.\n", program);
            std::exit(1);
        }
        // Asking all the time would take the processor from the server that is to draw.
        std::this_thread::sleep_for(100us);
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (screen.isPainted(*place)) {
        std::this_thread::sleep_for(1ms);
    }
    return times;
}

} // namespace

int main(int argc, char *argv[])
{
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() < 3) {
        std::fputs("usage: StartBench RUNS PROGRAM PROGRAM …\n", stderr);
        return 2;
    }
    const int runs = std::stoi(arguments[1]);
    const auto programs = arguments.subspan(2);
    Screen screen;
    for (int run = 0; run <= runs; ++run) {
        for (std::size_t index = 0; index < programs.size(); ++index) {
            const Times times = start(screen, programs[index]);
            if (run > 0) {
                std::printf("%zu %.3f %.3f\n", index, times.mapped, times.painted);
            }
        }
    }
    return 0;
}
