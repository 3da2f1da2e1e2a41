#include "companion/ui/CompanionControls.h"

#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/TaskEditor.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/Well.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/readingOrder.h"
#include "appearance/controls/symbols.h"
#include "companion/CompanionModel.h"
#include "platform/observe.h"

#include <QMenu>

namespace orvo {
namespace {

constexpr int padding = 16;
constexpr int gap = 8;
constexpr int markSize = 32;
constexpr int draftHeight = 140;
constexpr int messageHeight = 32;

}  // namespace

CompanionControls::CompanionControls(CompanionModel& model, QWidget* parent) : Card(parent), m_model(model) {
    resize(size);
    auto* const column = columnIn(this, 0, QMargins(padding, padding, padding, padding - 4));
    column->addWidget(makeHeader());
    column->addSpacing(12);
    column->addWidget(makeDraft(), 1);
    column->addSpacing(12);
    column->addWidget(makeVoiceRow());
    column->addSpacing(gap);
    auto* const use = wide(new OrvoButton(tr("Use draft in workspace"), QStringLiteral("arrow.up.right"),
                                          OrvoButton::Kind::Primary));
    connect(use, &OrvoButton::clicked, this, [this] {
        if (m_model.useDraft) m_model.useDraft();
    });
    column->addWidget(use);
    column->addSpacing(gap);
    m_message = new Paragraph(QString(), TypeRole::Caption);
    m_message->setMinimumHeight(messageHeight);
    column->addWidget(m_message);
    column->addWidget(makeFooter());

    observe(m_model, {&CompanionModel::draftChanged}, this, [this] { refreshDraft(); });
    observe(m_model, {&CompanionModel::listeningChanged, &CompanionModel::requestingMicrophoneChanged}, this,
            [this] { refreshMicrophone(); });
    observe(m_model, {&CompanionModel::speakingChanged}, this, [this] { refreshReading(); });
    observe(m_model, {&CompanionModel::messageChanged}, this, [this] { refreshMessage(); });
}

QWidget* CompanionControls::makeHeader() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 10);
    row->addWidget(new OrvoMark(markSize), 0, Qt::AlignVCenter);
    auto* const texts = columnIn(nullptr, 2);
    texts->addWidget(new Eyebrow(tr("Your desktop companion")));
    texts->addWidget(new TextLabel(tr("Orvo, within reach."), TypeRole::Section));
    row->addLayout(texts, 1);
    auto* const close = new OrvoButton(tr("Close quick draft"), QStringLiteral("xmark"),
                                       OrvoButton::Kind::Icon, OrvoButton::Size::Small);
    connect(close, &OrvoButton::clicked, this, &CompanionControls::closeRequested);
    row->addWidget(close, 0, Qt::AlignTop);
    return host;
}

QWidget* CompanionControls::makeDraft() {
    auto* const well = new Well;
    m_draft = new TaskEditor(tr("Companion draft"), tr("What’s on your mind?"));
    m_draft->setGrowth(draftHeight, draftHeight);
    connect(m_draft, &TaskEditor::textChanged, this, [this] { m_model.setDraft(m_draft->toPlainText()); });
    connect(m_draft, &TaskEditor::focusChanged, well, &Well::setFocused);
    columnIn(well, 0, QMargins(10, 10, 10, 10))->addWidget(m_draft);
    return well;
}

QWidget* CompanionControls::makeVoiceRow() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, gap);
    m_microphone = wide(new OrvoButton(QString()));
    connect(m_microphone, &OrvoButton::clicked, &m_model, &CompanionModel::toggleMicrophone);
    row->addWidget(m_microphone, 1);
    m_reading = new OrvoButton(tr("Read aloud options"), QStringLiteral("speaker.wave.2"),
                               OrvoButton::Kind::MenuOutlined);
    m_reading->setMenu(makeReadingMenu());
    row->addWidget(m_reading);
    return host;
}

QMenu* CompanionControls::makeReadingMenu() {
    auto* const menu = new QMenu(this);
    menu->addAction(tr("Read draft aloud"), &m_model, [this] { m_model.speak(m_model.draft()); });
    menu->addAction(tr("Read latest session output"), &m_model, [this] {
        if (m_model.readOutput) m_model.readOutput();
    });
    QAction* const stop = menu->addAction(tr("Stop Orvo audio"), &m_model, &CompanionModel::stopSpeech);
    connect(menu, &QMenu::aboutToShow, this, [this, stop] {
        const QColor ink = palette().color(QPalette::Text);
        stop->setIcon(symbolPixmap(QStringLiteral("speaker.slash.fill"), ink, 16, devicePixelRatioF()));
    });
    return menu;
}

QWidget* CompanionControls::makeFooter() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, gap);
    row->addWidget(new TextLabel(tr("Review before sending"), TypeRole::Caption, Ink::Muted));
    row->addStretch();
    auto* const customize =
        new OrvoButton(tr("Customize pet"), {}, OrvoButton::Kind::Plain, OrvoButton::Size::Small);
    customize->setFlush(true);
    connect(customize, &OrvoButton::clicked, this, [this] {
        if (m_model.openSettings) m_model.openSettings();
    });
    row->addWidget(customize);
    return host;
}

void CompanionControls::focusDraft() {
    m_draft->setFocus();
}

bool CompanionControls::focusNextPrevChild(bool next) {
    return focusNeighbour(*this, next);
}

void CompanionControls::refreshDraft() {
    m_draft->setText(m_model.draft());
}

void CompanionControls::refreshMicrophone() {
    const bool busy = m_model.voiceBusy();
    m_microphone->setTitle(busy ? tr("Stop mic") : tr("Microphone"));
    m_microphone->setIconName(busy ? QStringLiteral("mic.slash.fill") : QStringLiteral("mic.fill"));
}

void CompanionControls::refreshReading() {
    m_reading->setIconName(m_model.speaking() ? QStringLiteral("speaker.wave.2.fill")
                                              : QStringLiteral("speaker.wave.2"));
}

void CompanionControls::refreshMessage() {
    m_message->setText(m_model.message());
}

}  // namespace orvo
