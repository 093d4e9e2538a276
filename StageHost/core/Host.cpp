#include "Host.h"

namespace stagehost {

Host::Host(HostSettings settings)
    : settings_(std::move(settings))
    , factories_(faces_)
    , runtimeInfo_(faces_, settings_)
    , folders_(faces_, settings_)
    , variables_(faces_)
    , names_(faces_) {
    faces_.Offer("IMInterface", static_cast<IMInterface*>(&runtimeInfo_));
    if (settings_.link == Link::Older)
        olderLink_ = std::make_unique<OlderLinkManager>(faces_);
    if (settings_.link == Link::Newer)
        newerLink_ = std::make_unique<NewerLinkManager>(faces_);
}

void Host::ForgetDevice(IKXPDevice* device) {
    if (newerLink_)
        newerLink_->Forget(device);
}

} // namespace stagehost
