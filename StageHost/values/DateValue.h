#pragma once

#include <QDate>

#include "ValueFace.h"

namespace stagehost {

/// A calendar date from 1 January 1900 to 31 December 9999. The number is the days since 1 January 1900; the text is
/// "DD/MM/YYYY", and "YYYY-MM-DD" is understood too. What is no such date leaves it as it is; the empty text is the
/// first day.   [any]
class DateValue final : public ValueFace<IDateData> {
public:
    explicit DateValue(const ValueSpec& spec);

protected:
    std::int32_t ReadInt() const override;
    double ReadReal() const override { return ReadInt(); }
    std::string ReadText() const override;
    Taken WriteInt(std::int32_t value) override;
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec&) override {}

private:
    Taken WriteDate(const QDate& date);

    QDate m_date;
};

} // namespace stagehost
