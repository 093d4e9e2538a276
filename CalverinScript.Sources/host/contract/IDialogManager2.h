#pragma once

#include "IMInterface.h"
#include "KXPTypes.h"

/// @file
/// Dialogs of the host that the setup dialog of a device opens.

/// A dialog in which the user chooses a date. Made for one use; Release ends it.
class IDateDialog : public IMInterface {
public:
    /// The window in front of which it opens; 0 for none. @return 0.   [host main]
    virtual KXPCode SetParentWindow(KXPWindow parent) = 0;
    /// The date that it begins with. @param month 1 to 12. @return 0.   [host main]
    virtual KXPCode SetDate(std::int32_t year, std::int32_t month, std::int32_t day) = 0;
    /// Shows it and waits until it is closed. Events run meanwhile, so the device may be gone afterwards.
    /// @return 0 accepted, 13 cancelled.   [host main]
    virtual KXPCode Run() = 0;
    /// The chosen date; the one that it began with when it was cancelled.   [host main]
    virtual std::int32_t GetYear() = 0;
    virtual std::int32_t GetMonth() = 0;
    virtual std::int32_t GetDay() = 0;

protected:
    ~IDateDialog() = default;
};

/// Makes dialogs. Found on the host root as "IDialogManager2".
class IDialogManager2 : public IMInterface {
public:
    /// @return for the caller to Release; null when there is none.   [host main]
    virtual IDateDialog* CreateDateDialog() = 0;

protected:
    ~IDialogManager2() = default;
};
