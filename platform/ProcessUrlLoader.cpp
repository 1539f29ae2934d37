// SPDX-License-Identifier: MIT
#include "platform/ProcessUrlLoader.h"

namespace platform {

namespace {

// Each helper takes 13 MB, and a user may request any number of refreshes while the provider does not answer.
constexpr std::uint64_t maximumHelpers = 4;

}

ProcessUrlLoader::ProcessUrlLoader(
    std::filesystem::path helper, std::filesystem::path additionalAuthority, std::chrono::milliseconds limit)
    : helper_(std::move(helper))
    , additionalAuthority_(std::move(additionalAuthority))
    , limit_(limit)
{
}

std::optional<std::string> ProcessUrlLoader::load(std::string const& url)
{
    if (!isWellFormedUrl(url) || !awaitTurn())
        return std::nullopt;
    auto body = helper_.answerTo(additionalAuthority_.string() + "\n" + url + "\n", maximumBodySize, limit_);
    endTurn();
    return body;
}

// The numbers keep the loads in order of arrival.
bool ProcessUrlLoader::awaitTurn()
{
    std::unique_lock lock(mutex_);
    std::uint64_t const number = came_++;
    turnEnded_.wait(lock, [this, number] { return cancelled_ || number < ended_ + maximumHelpers; });
    return !cancelled_;
}

void ProcessUrlLoader::endTurn()
{
    std::scoped_lock const lock(mutex_);
    ++ended_;
    turnEnded_.notify_all();
}

void ProcessUrlLoader::cancel()
{
    std::scoped_lock const lock(mutex_);
    cancelled_ = true;
    turnEnded_.notify_all();
    helper_.cancel();
}

}
