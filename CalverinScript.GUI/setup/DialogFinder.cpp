#include "DialogFinder.h"

#include "ui_DialogFinder.h"

DialogFinder::DialogFinder(QWidget* parent, bool matchesCase, bool findsDown)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogFinder>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_ui->checkBoxMatchCase->setChecked(matchesCase);
    m_ui->radioButtonDirDown->setChecked(findsDown);
    m_ui->radioButtonDirUp->setChecked(!findsDown);
    connect(m_ui->pushButtonNext, &QPushButton::clicked, this, &DialogFinder::SlotNext);
    connect(m_ui->pushButtonClose, &QPushButton::clicked, this, &DialogFinder::SlotClose);
    connect(m_ui->radioButtonDirUp, &QRadioButton::clicked, this, &DialogFinder::SlotDirUpChange);
    connect(m_ui->radioButtonDirDown, &QRadioButton::clicked, this, &DialogFinder::SlotDirDownChange);
    m_ui->lineEditFind->setFocus();
}

DialogFinder::~DialogFinder() = default;

bool DialogFinder::MatchesCase() const {
    return m_ui->checkBoxMatchCase->isChecked();
}

bool DialogFinder::FindsDown() const {
    return m_ui->radioButtonDirDown->isChecked();
}

void DialogFinder::SlotNext() {
    Q_EMIT SignalFind(m_ui->lineEditFind->text(), MatchesCase(), FindsDown());
}

void DialogFinder::SlotClose() {
    close();
}

void DialogFinder::SlotDirUpChange(bool isUp) {
    m_ui->radioButtonDirDown->setChecked(!isUp);
}

void DialogFinder::SlotDirDownChange(bool isDown) {
    m_ui->radioButtonDirUp->setChecked(!isDown);
}
