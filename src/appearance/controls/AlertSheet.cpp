#include "appearance/controls/AlertSheet.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Paragraph.h"

#include <QEventLoop>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <memory>

namespace orvo {
namespace {

constexpr int alertWidth = 420;
constexpr int alertPadding = 20;

OrvoButton::Kind kindOf(int index, const Alert& alert) {
    if (index != 0 || alert.buttons.size() == 1) return OrvoButton::Kind::Outlined;
    return alert.defaultButton == Alert::Default::FirstButton ? OrvoButton::Kind::Primary
                                                              : OrvoButton::Kind::DestructiveFilled;
}

}  // namespace

AlertSheet::AlertSheet(QWidget* window, const Alert& alert) : Sheet(window, alertWidth) {
    Q_ASSERT(!alert.buttons.isEmpty());
    const int last = static_cast<int>(alert.buttons.size()) - 1;
    m_default = alert.defaultButton == Alert::Default::FirstButton ? 0 : last;
    m_answer = last;
    setAccessibleName(alert.message);
    setAccessibleDescription(alert.informativeText);
    setPadding(alertPadding);

    auto* texts = new QWidget;
    auto* column = new QVBoxLayout(texts);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(new Paragraph(alert.message, TypeRole::CardTitle, Ink::Text));
    if (!alert.informativeText.isEmpty()) column->addWidget(new Paragraph(alert.informativeText));

    auto* footer = new QWidget;
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 16, 0, 0);
    row->setSpacing(8);
    row->addStretch();
    for (int index = 0; index <= last; ++index) {
        auto* button = new OrvoButton(alert.buttons[index], {}, kindOf(index, alert));
        m_buttons.push_back(button);
        row->insertWidget(1, button);  // the first stands outermost, at the right
        connect(button, &QAbstractButton::clicked, this, [this, index] { answer(index); });
    }
    setContent(nullptr, texts, footer);
    connect(this, &Sheet::dismissed, this, &AlertSheet::answered);
}

int AlertSheet::run() {
    QEventLoop loop;
    connect(this, &AlertSheet::answered, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    open(m_buttons[static_cast<std::size_t>(m_default)]);
    const QPointer<AlertSheet> alive(this);
    const int fallback = m_answer;
    loop.exec(QEventLoop::DialogExec);
    return alive ? m_answer : fallback;
}

void AlertSheet::answer(int index) {
    m_answer = index;
    dismiss();
}

void AlertSheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        answer(m_default);
        return;
    }
    Sheet::keyPressEvent(event);
}

int presentAlert(QWidget* window, const Alert& alert) {
    std::unique_ptr<QWidget> own;
    if (!window) {
        own = std::make_unique<QWidget>();
        own->resize(alertWidth + 48, 240);
        window = own.get();
    }
    window = window->window();
    window->show();
    window->raise();
    window->activateWindow();
    QPointer<AlertSheet> sheet = new AlertSheet(window, alert);
    const int answer = sheet->run();
    if (sheet) sheet->deleteLater();
    return answer;
}

}  // namespace orvo
