#pragma once

#include <functional>
#include <string>

#include "IDialogManager2.h"

namespace plain {

/// Makes date dialogs in which a user does what a test says, and counts those that are not released.
class FakeDialogs : public IDialogManager2 {
public:
    virtual ~FakeDialogs() = default;

    bool makesDialogs = true;
    KXPCode answer = 0;            ///< of Run
    std::int32_t chosen[3] = {};   ///< year, month, day
    std::string asked;             ///< "parent: year-month-day" of the last dialog
    int open = 0;                  ///< dialogs that were made and not released
    std::function<void()> whileUp; ///< called from inside Run

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    IDateDialog* CreateDateDialog() override {
        open += makesDialogs ? 1 : 0;
        return makesDialogs ? new Dialog(*this) : nullptr;
    }

private:
    class Dialog : public IDateDialog {
    public:
        explicit Dialog(FakeDialogs& dialogs)
            : m_dialogs(dialogs) {}
        virtual ~Dialog() = default;
        KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
        KXPCode Release() override {
            --m_dialogs.open;
            delete this;
            return KXP_OK;
        }
        KXPCode SetParentWindow(KXPWindow parent) override {
            m_dialogs.asked = std::to_string(parent);
            return KXP_OK;
        }
        KXPCode SetDate(std::int32_t year, std::int32_t month, std::int32_t day) override {
            m_dialogs.asked += ": " + std::to_string(year) + "-" + std::to_string(month) + "-" + std::to_string(day);
            return KXP_OK;
        }
        KXPCode Run() override {
            if (m_dialogs.whileUp)
                m_dialogs.whileUp();
            return m_dialogs.answer;
        }
        std::int32_t GetYear() override { return m_dialogs.chosen[0]; }
        std::int32_t GetMonth() override { return m_dialogs.chosen[1]; }
        std::int32_t GetDay() override { return m_dialogs.chosen[2]; }

    private:
        FakeDialogs& m_dialogs;
    };
};

} // namespace plain
