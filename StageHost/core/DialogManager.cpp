#include "DialogManager.h"

#include "FaceAnswer.h"
#include "UserDialogs.h"

namespace stagehost {

namespace {

constexpr KXPCode kCancelled = 13;

/// Deletes itself when it is released.
class DateDialog final : public IDateDialog {
public:
    explicit DateDialog(UserDialogs& dialogs)
        : m_dialogs(dialogs) {}

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out, {{"IMInterface", this}, {"IDateDialog", this}});
    }
    KXPCode Release() override {
        delete this;
        return KXP_OK;
    }
    KXPCode SetParentWindow(KXPWindow parent) override {
        m_parent = parent;
        return KXP_OK;
    }
    KXPCode SetDate(std::int32_t year, std::int32_t month, std::int32_t day) override {
        m_day = {year, month, day};
        return KXP_OK;
    }
    KXPCode Run() override {
        const auto chosen = m_dialogs.ChooseDay(m_day, m_parent);
        m_day = chosen.value_or(m_day);
        return chosen ? KXPCode{KXP_OK} : kCancelled;
    }
    std::int32_t GetYear() override { return m_day.year; }
    std::int32_t GetMonth() override { return m_day.month; }
    std::int32_t GetDay() override { return m_day.day; }

private:
    ~DateDialog() = default;

    UserDialogs& m_dialogs;
    KXPWindow m_parent = 0;
    CalendarDay m_day;
};

} // namespace

DialogManager::DialogManager(FaceTable& faces, UserDialogs& dialogs)
    : HostFace(faces)
    , m_dialogs(dialogs) {
    OfferAs("IDialogManager2");
}

IDateDialog* DialogManager::CreateDateDialog() {
    return new DateDialog(m_dialogs);
}

} // namespace stagehost
