#include "FormFields.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QScriptEngine>
#include <QSpinBox>
#include <QTimeEdit>
#include <QVariant>

#include "DriverTables.h"
#include "HostScreen.h"
#include "HostText.h"
#include "IDialogManager2.h"
#include "IResourceProvider.h"
#include "MDate.h"
#include "MTime.h"
#include "MyDateEdit.h"
#include "MyResourceSelector.h"
#include "TimeBase.h"
#include "TimeText.h"

namespace {

constexpr int kFieldWidth = 200;
constexpr int kFieldHeight = 35;
constexpr int kDefaultDecimals = 5;
constexpr int kMostStepDigits = 5;
constexpr double kLargestReal = 1.7e308;
constexpr int kMsPerSecond = 1000;

QString PropertyOf(const MScriptSetting& setting, const char* name) {
    return FindProperty(setting.properties, QLatin1String(name));
}

int WholeNumber(const QString& text, int otherwise) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    constexpr double kLowest = std::numeric_limits<int>::min();
    constexpr double kHighest = std::numeric_limits<int>::max();
    return isNumber ? static_cast<int>(std::clamp(number, kLowest, kHighest)) : otherwise;
}

double RealNumber(const QString& text, double otherwise) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? std::clamp(number, -kLargestReal, kLargestReal) : otherwise;
}

int WholeProperty(const MScriptSetting& setting, const char* name, int otherwise) {
    return WholeNumber(PropertyOf(setting, name), otherwise);
}

template <typename Field>
const Field& As(const QWidget& field) {
    return static_cast<const Field&>(field);
}

QWidget* MakeLineEdit(const MScriptSetting& setting) {
    auto* field = new QLineEdit;
    const int maxLength = WholeProperty(setting, "MaxLength", -1);
    if (maxLength >= 0)
        field->setMaxLength(maxLength);
    field->setText(setting.value);
    const int width = WholeProperty(setting, "Width", -1);
    if (width >= 0)
        field->setFixedWidth(width);
    field->setFixedHeight(kFieldHeight);
    return field;
}

QString ReadLineEdit(const QWidget& field, const MScriptSetting& /*setting*/) {
    return As<QLineEdit>(field).text();
}

template <typename Box>
Box* MakeBox(const MScriptSetting& setting) {
    auto* box = new Box;
    box->setPrefix(PropertyOf(setting, "Prefix"));
    box->setSuffix(PropertyOf(setting, "Suffix"));
    box->setFixedSize(kFieldWidth, kFieldHeight);
    return box;
}

QWidget* MakeSpinBox(const MScriptSetting& setting) {
    auto* box = MakeBox<QSpinBox>(setting);
    box->setRange(WholeProperty(setting, "MinValue", std::numeric_limits<int>::min()),
                  WholeProperty(setting, "MaxValue", std::numeric_limits<int>::max()));
    box->setValue(WholeNumber(setting.value, 0));
    return box;
}

QString ReadSpinBox(const QWidget& field, const MScriptSetting& /*setting*/) {
    return QString::number(As<QSpinBox>(field).value());
}

/// One step changes the last of up to five digits.
void SetStep(QDoubleSpinBox& box, int precision) {
    double step = 1;
    for (int digit = 0; digit < precision; ++digit)
        step /= 10;
    if (precision >= 1 && precision <= kMostStepDigits)
        box.setSingleStep(step);
}

QWidget* MakeRealSpinBox(const MScriptSetting& setting) {
    auto* box = MakeBox<QDoubleSpinBox>(setting);
    const int precision = WholeProperty(setting, "Precision", -1);
    box->setDecimals(precision >= 0 ? precision : kDefaultDecimals);
    SetStep(*box, precision);
    box->setRange(RealNumber(PropertyOf(setting, "MinValue"), -kLargestReal),
                  RealNumber(PropertyOf(setting, "MaxValue"), kLargestReal));
    box->setValue(RealNumber(setting.value, 0));
    return box;
}

/// A number that the box still shows was not touched, and keeps the digits that it does not show.
QString ReadRealSpinBox(const QWidget& field, const MScriptSetting& setting) {
    const auto& box = As<QDoubleSpinBox>(field);
    bool isNumber = false;
    const double stored = setting.value.toDouble(&isNumber);
    if (isNumber && box.textFromValue(stored) == box.textFromValue(box.value()))
        return setting.value;
    return QString::number(box.value(), 'g', 6);
}

/// A script may give its default as the item's text. Items are an enumeration's: a choice of another type has none, and says so.
QWidget* MakeComboBox(const MScriptSetting& setting) {
    auto* box = new QComboBox;
    box->addItems(setting.items);
    const int byText = setting.items.indexOf(setting.value);
    box->setCurrentIndex(WholeNumber(setting.value, std::max(byText, 0)));
    box->setPlaceholderText(setting.items.isEmpty()
                                ? QCoreApplication::translate("FormFields", "no items (Type is not \"Enum\")")
                                : QCoreApplication::translate("FormFields", "%1 (no item)").arg(setting.value));
    box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    box->setMinimumWidth(kFieldWidth);
    return box;
}

/// Where nothing was chosen instead of it, a value that is none of the items stays.
QString ReadComboBox(const QWidget& field, const MScriptSetting& setting) {
    const auto& box = As<QComboBox>(field);
    return box.currentIndex() >= 0 ? QString::number(box.currentIndex()) : setting.value;
}

/// A date is stored as a text or as its number of days since 1 January 1900.
MDate StoredDate(const MScriptSetting& setting) {
    MDate date;
    bool isNumber = false;
    const int number = setting.value.toInt(&isNumber);
    if (isNumber)
        date.SetFromDayNumber(number);
    else
        date.SetFromText(ToHostText(setting.value).constData());
    return date;
}

QWidget* MakeDateEdit(const MScriptSetting& setting) {
    const MDate date = StoredDate(setting);
    auto* field = new MyDateEdit;
    field->SetDate(date.GetDay(), date.GetMonth(), date.GetYear());
    return field;
}

/// A number that the field still shows was not touched, and stays one.
QString ReadDateEdit(const QWidget& field, const MScriptSetting& setting) {
    const auto& edit = As<MyDateEdit>(field);
    MDate date;
    date.SetYear(edit.GetYear());
    date.SetMonth(edit.GetMonth());
    date.SetDay(edit.GetDay());
    bool isNumber = false;
    const int stored = setting.value.toInt(&isNumber);
    if (isNumber && stored == date.GetDayNumber())
        return setting.value;
    char text[MDate::kTextSize] = {};
    return FromHostText(date.GetText(text));
}

/// A number that is none of the types counts as none.
int TimeTypeOf(const MScriptSetting& setting) {
    const int type = WholeProperty(setting, "TimeCodeType", kHundredths);
    return IsTimeType(type) ? type : kHundredths;
}

/// The first millisecond of a frame, so that reading the field back gives the same frame.
int MsOfFrames(int frames, int framesASecond) {
    return (frames * kMsPerSecond + framesASecond - 1) / framesASecond;
}

/// A time is stored as a text or as its count of frames. Nothing for a text that is none.
std::optional<QTime> StoredTime(const MScriptSetting& setting) {
    const int type = TimeTypeOf(setting);
    bool isNumber = false;
    int count = setting.value.toInt(&isNumber);
    if (!isNumber) {
        const auto read = TimeFromText(ToHostText(setting.value).constData(), TextBase(type));
        if (!read)
            return std::nullopt;
        count = *read;
    }
    MTime time(count);
    time.SetType(type);
    return QTime(std::min(time.GetHours(), 23), time.GetMinutes(), time.GetSeconds(),
                 std::min(MsOfFrames(time.GetFrames(), CountBase(type).unitsASecond), kMsPerSecond - 1));
}

QWidget* MakeTimeEdit(const MScriptSetting& setting) {
    auto* field = new QTimeEdit;
    field->setDisplayFormat(QStringLiteral("HH:mm:ss/zzz"));
    field->setTime(StoredTime(setting).value_or(QTime(0, 0)));
    field->setFixedSize(kFieldWidth, kFieldHeight);
    return field;
}

/// A time that the field still shows was not touched, and keeps its form.
QString ReadTimeEdit(const QWidget& field, const MScriptSetting& setting) {
    const QTime shown = As<QTimeEdit>(field).time();
    if (!setting.value.isEmpty() && StoredTime(setting) == shown)
        return setting.value;
    const int type = TimeTypeOf(setting);
    MTime time;
    time.SetType(type);
    time.SetHMSF(shown.hour(), shown.minute(), shown.second(),
                 shown.msec() * CountBase(type).unitsASecond / kMsPerSecond);
    return FromHostText(time.GetText());
}

/// A sign that would underline the letter behind it.
QString WithoutMnemonics(QString text) {
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QWidget* MakeCheckBox(const MScriptSetting& setting) {
    auto* box = new QCheckBox(WithoutMnemonics(setting.name));
    box->setChecked(WholeNumber(setting.value, 0) != 0);
    return box;
}

QString ReadCheckBox(const QWidget& field, const MScriptSetting& /*setting*/) {
    return As<QCheckBox>(field).checkState() == Qt::Checked ? QStringLiteral("1") : QStringLiteral("0");
}

QWidget* MakeLabel(const MScriptSetting& setting) {
    auto* label = new QLabel(setting.value);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    label->setWordWrap(true);
    return label;
}

QWidget* MakeDivider(const MScriptSetting& /*setting*/) {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QWidget* MakeResource(const MScriptSetting& setting) {
    QScriptEngine engine;
    ResourceSignature signature = ReadResourceSignature(QScriptValue(setting.value), engine);
    if (signature.type.isEmpty())
        signature.type = QLatin1String(WidgetName(setting.widget));
    auto* field = new MyResourceSelector;
    field->SetResource(signature);
    return field;
}

QString ReadResource(const QWidget& field, const MScriptSetting& /*setting*/) {
    return As<MyResourceSelector>(field).GetSignature();
}

void ConnectToHost(QWidget& field, const FormHost& host) {
    if (auto* date = qobject_cast<MyDateEdit*>(&field)) {
        date->SetDialogManager(host.dialogs);
        date->SetParentWindow(host.window);
    }
    if (auto* resource = qobject_cast<MyResourceSelector*>(&field)) {
        resource->SetProvider(host.resources);
        resource->SetParentWindow(host.window);
        resource->SetOwnerText(host.owner);
    }
}

using Layout = FieldLayout;

constexpr FieldKind kFieldKinds[] = {
    {"LineEdit", Layout::LabelAndField, &MakeLineEdit, &ReadLineEdit},
    {"TextEdit", Layout::LabelAlone, nullptr, nullptr},
    {"SpinBox", Layout::LabelAndField, &MakeSpinBox, &ReadSpinBox},
    {"RealSpinBox", Layout::LabelAndField, &MakeRealSpinBox, &ReadRealSpinBox},
    {"ComboBox", Layout::LabelAndField, &MakeComboBox, &ReadComboBox},
    {"DateEdit", Layout::LabelAndField, &MakeDateEdit, &ReadDateEdit},
    {"TimeEdit", Layout::LabelAndField, &MakeTimeEdit, &ReadTimeEdit},
    {"Color", Layout::LabelAlone, nullptr, nullptr},
    {"CheckBox", Layout::FieldAlone, &MakeCheckBox, &ReadCheckBox},
    {"List", Layout::LabelAlone, nullptr, nullptr},
    {"Slider", Layout::LabelAlone, nullptr, nullptr},
    {"Knob", Layout::LabelAlone, nullptr, nullptr},
    {"Label", Layout::WholeRow, &MakeLabel, nullptr},
    {"Divider", Layout::WholeRow, &MakeDivider, nullptr},
    {"Serial", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"DMXIn", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"DMXOut", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"DigitalIn", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"DigitalOut", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"AnalogIn", Layout::LabelAndField, &MakeResource, &ReadResource},
    {"AnalogOut", Layout::LabelAndField, &MakeResource, &ReadResource},
};
static_assert(std::size(kFieldKinds) == kLastResourceWidget + 1, "one row for each kind");

} // namespace

const FieldKind& FieldKindOf(int widget) {
    return WidgetName(widget) != nullptr ? kFieldKinds[widget] : kFieldKinds[0];
}

FieldLayout LayoutOf(const MScriptSetting& setting) {
    const FieldKind& kind = FieldKindOf(setting.widget);
    const bool isWide = kind.make == &MakeLineEdit && WholeProperty(setting, "Width", -1) < 0;
    return isWide ? FieldLayout::LabelAndWideField : kind.layout;
}

FormHost FormHost::Find(IMInterface* host, const QByteArray& owner) {
    return {QueryFace<IDialogManager2>(host, "IDialogManager2"),
            QueryFace<IResourceProvider>(host, "IResourceProvider"), MainWindowOf(host), owner};
}

QWidget* MakeField(const MScriptSetting& setting, const FormHost& host) {
    const FieldKind& kind = FieldKindOf(setting.widget);
    if (kind.make == nullptr)
        return nullptr;
    QWidget* field = kind.make(setting);
    field->setProperty(kSettingNameProperty, setting.name);
    field->setToolTip(PropertyOf(setting, "Hint"));
    ConnectToHost(*field, host);
    QWidget* proxy = field->focusProxy();
    (proxy != nullptr ? proxy : field)->setAccessibleName(setting.name);
    return field;
}

QString ReadField(const QWidget& field, const MScriptSetting& setting) {
    const FieldKind& kind = FieldKindOf(setting.widget);
    return kind.read != nullptr ? kind.read(field, setting) : setting.value;
}
