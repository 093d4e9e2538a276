#pragma once

#include "HostFace.h"
#include "IDialogManager2.h"

namespace stagehost {

class UserDialogs;

/// Makes the dialogs that modules open.
class DialogManager final : public HostFace<IDialogManager2> {
public:
    /// @param dialogs must outlive the manager and all that it has made.
    DialogManager(FaceTable& faces, UserDialogs& dialogs);

    IDateDialog* CreateDateDialog() override;

private:
    UserDialogs& m_dialogs;
};

} // namespace stagehost
