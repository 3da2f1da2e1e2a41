#include "companion/ui/DesktopPet.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "companion/CompanionModel.h"
#include "companion/ui/PetArt.h"
#include "companion/ui/PetInteractionView.h"
#include "platform/observe.h"

#include <QBitmap>
#include <QPainter>
#include <QPixmap>

namespace orvo {
namespace {

constexpr int footroom = 16;
constexpr int capsuleBottom = 5;
constexpr int capsuleHeight = 22;
constexpr int capsulePadding = 9;
constexpr int dotSize = 5;
constexpr int dotGap = 4;
constexpr double capsuleOpacity = 0.94;
constexpr int textSize = 10;

QFont capsuleFont() {
    QFont font = fontOf(TypeRole::Control);
    font.setPixelSize(textSize);
    return font;
}

}  // namespace

class DesktopPet::Capsule final : public QWidget {
public:
    explicit Capsule(QWidget* parent) : QWidget(parent) { setFont(capsuleFont()); }

    void show(const QString& text, Ink dot) {
        m_text = text;
        m_dot = dot;
        setAccessibleName(text);
        resize(sizeHint());
        update();
    }

    QSize sizeHint() const override {
        return {2 * capsulePadding + dotSize + dotGap + measureText(font(), m_text), capsuleHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const Roles& roles = rolesOf(this);
        fillRounded(painter, rect(), capsuleHeight / 2.0, toQColor(Rgba{roles.sidebar, capsuleOpacity}));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(inkColor(roles, m_dot));
        painter.drawEllipse(QRectF(capsulePadding, (capsuleHeight - dotSize) / 2.0, dotSize, dotSize));
        painter.setPen(toQColor(roles.text));
        paintText(painter, rect().adjusted(capsulePadding + dotSize + dotGap, 0, 0, 0), Qt::AlignVCenter,
                  m_text);
    }

private:
    QString m_text;
    Ink m_dot = Ink::Accent;
};

DesktopPet::DesktopPet(CompanionModel& model, PetInteractionView* pointer, QWidget* parent)
    : QWidget(parent),
      m_model(model),
      m_art(new PetArt(model, PetArt::Motion::Floating, this)),
      m_capsule(new Capsule(this)),
      m_pointer(pointer) {
    m_pointer->setParent(this);
    connect(m_art, &PetArt::outlineChanged, this, &DesktopPet::outlineChanged);
    observe(m_model, {&CompanionModel::listeningChanged, &CompanionModel::speakingChanged}, this,
            [this] { refreshCapsule(); });
}

void DesktopPet::refreshCapsule() {
    const QString text = m_model.listening()  ? tr("Listening")
                         : m_model.speaking() ? tr("Speaking")
                                              : tr("Orvo AI");
    m_capsule->show(text, m_model.listening() ? Ink::Danger : Ink::Accent);
    placeCapsule();
    Q_EMIT outlineChanged();
}

void DesktopPet::placeCapsule() {
    m_capsule->move((width() - m_capsule->width()) / 2, height() - capsuleBottom - m_capsule->height());
}

void DesktopPet::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_art->setGeometry(0, 0, width(), height() - footroom);
    m_pointer->setGeometry(rect());
    placeCapsule();
    Q_EMIT outlineChanged();
}

QRegion DesktopPet::outline() {
    QPixmap picture(size());
    picture.fill(Qt::transparent);
    render(&picture, QPoint(), QRegion(), DrawChildren);
    return QRegion(picture.mask());
}

}  // namespace orvo
