#include "Host.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLastRequests(2000);

} // namespace

Host::Host(HostSettings settings, const ShowSpec& show)
    : settings_(std::move(settings))
    , factories_(faces_)
    , runtimeInfo_(faces_, settings_)
    , folders_(faces_, settings_)
    , variables_(faces_, &feed_)
    , names_(faces_)
    , model_(variables_, feed_)
    , desk_(model_, pool_) {
    model_.Fill(show);
    faces_.Offer("IMInterface", static_cast<IMInterface*>(&runtimeInfo_));
    if (settings_.link == Link::Older || settings_.link == Link::Both)
        olderLink_ = std::make_unique<OlderLinkManager>(faces_, desk_);
    if (settings_.link == Link::Newer || settings_.link == Link::Both)
        newerLink_ = std::make_unique<NewerLinkManager>(faces_, desk_);
}

Host::~Host() {
    model_.EndTasks();
    EndWaitingOfOlderLink();
    pool_.Close(kLastRequests);
}

void Host::CloseLink(IKXPDevice* device) {
    if (newerLink_)
        newerLink_->Close(device);
}

void Host::EndWaitingOfOlderLink() {
    if (olderLink_)
        olderLink_->EndWaiting();
}

void Host::ForgetDevice(IKXPDevice* device) {
    if (newerLink_)
        newerLink_->Forget(device);
}

} // namespace stagehost
