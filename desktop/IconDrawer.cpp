// SPDX-License-Identifier: MIT
#include "desktop/IconDrawer.h"

#include <utility>

namespace {

// All squares together take 43 kB, and a wide picture 10 kB per letter.
constexpr std::size_t maximumAnswerSize = 1024UL * 1024;

std::vector<StatusPixmap> pixmapsOf(
    platform::HelperProcess& helper, std::string const& request, std::chrono::milliseconds limit)
{
    auto const answer = helper.answerTo(request, maximumAnswerSize, limit);
    return answer ? decodePixmaps(*answer).value_or(std::vector<StatusPixmap>()) : std::vector<StatusPixmap>();
}

}

IconDrawer::IconDrawer(std::filesystem::path helper, platform::RunLoop& runLoop, platform::BackgroundQueues& queues,
    std::chrono::milliseconds limit)
    : runLoop_(runLoop)
    , queues_(queues)
    , limit_(limit)
    , helper_(std::make_shared<platform::HelperProcess>(std::move(helper)))
{
}

void IconDrawer::draw(std::string title, StatusLook look, Drawn drawn)
{
    Request request { { look, std::move(title) }, std::move(drawn) };
    if (drawn_)
        waiting_ = std::move(request);
    else
        start(std::move(request));
}

void IconDrawer::start(Request request)
{
    drawn_ = std::move(request.drawn);
    auto const answer = [this, life = std::weak_ptr(life_)](std::vector<StatusPixmap> const& pixmaps) {
        if (!life.expired())
            finish(pixmaps);
    };
    bool const started = queues_.async(
        "status_icon", [&runLoop = runLoop_, helper = helper_, text = encode(request.drawing), limit = limit_, answer] {
            runLoop.perform([answer, pixmaps = pixmapsOf(*helper, text, limit)] { answer(pixmaps); });
        });
    if (!started)
        runLoop_.perform([answer] { answer({}); });
}

// The next drawing is started before the handler runs, because the handler may destroy the drawer.
void IconDrawer::finish(std::vector<StatusPixmap> const& pixmaps)
{
    auto const drawn = std::exchange(drawn_, nullptr);
    if (waiting_)
        start(*std::exchange(waiting_, std::nullopt));
    drawn(pixmaps);
}
