// SPDX-License-Identifier: MIT
#include "app/documents/viewer/picture_viewer.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGestureEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/documents/viewer/viewer_button.h"
#include "app/windows/common_commands.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_text.h"
#include "timeline/saving/data_item_provider.h"
#include "timeline/saving/saving.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

constexpr QColor backdrop(24, 24, 26);
constexpr QColor secondaryText(200, 200, 204);
constexpr int edgeMargin = 12;  // points
constexpr int bar = 64;         // the height of what is above the picture, and of what is below it
constexpr qreal zoomStep = 1.25;
constexpr qreal doubleClickScale = 2;
constexpr qreal pointsPerStep = 60;  // of a wheel that counts pixels
constexpr QSize unknownSize(480, 360);
constexpr qreal mostPixels = 32e6;

}  // namespace

PictureViewer::PictureViewer(QWidget& window, std::shared_ptr<const TesselChatLog> log,
                             qsizetype row, PictureCache& pictures, const ContactsStore& contacts)
    : QWidget(&window),
      log_(std::move(log)),
      row_(row),
      pictures_(pictures),
      contacts_(contacts),
      name_(new QLabel(this)),
      details_(new QLabel(this)) {
    setObjectName(QStringLiteral("pictureViewer"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    grabGesture(Qt::PinchGesture);
    using Sign = ViewerButton::Sign;
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const auto button = [this](Sign sign, const QString& text, auto function) {
        auto* button = new ViewerButton(sign, text, this);
        connect(button, &QAbstractButton::clicked, this, function);
        return button;
    };
    previous_ =
        button(isMirrored ? Sign::right : Sign::left, tr("Previous Picture"), [this] { step(-1); });
    next_ = button(isMirrored ? Sign::left : Sign::right, tr("Next Picture"), [this] { step(1); });
    copy_ = button(Sign::copy, tr("Copy Picture"), [this] { copy(); });
    save_ = button(Sign::save, tr("Save Picture As …"), [this] { save(); });
    close_ = button(Sign::close, tr("Close"), [this] { finish(); });
    for (QLabel* label : {name_, details_}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        QPalette colors = label->palette();
        colors.setColor(QPalette::WindowText, label == name_ ? QColor(Qt::white) : secondaryText);
        label->setPalette(colors);
    }
    QFont bold = name_->font();
    bold.setBold(true);
    name_->setFont(bold);
    window.installEventFilter(this);
    connect(&pictures_, &PictureCache::changed, this, [this](const char* bytes) {
        if (bytes == image().image().data.identity()) measure();
    });
    connect(&gifPlayer_, &GifPlayer::changed, this, [this] { update(); });
    connect(&contacts_, &ContactsStore::addressToContactChanged, this, &PictureViewer::describe);
    setGeometry(window.rect());
    show(row);
    raise();
    QWidget::show();
    setFocus();
}

PictureViewer::~PictureViewer() = default;

const TesselChatLog::Image& PictureViewer::image() const {
    return std::get<TesselChatLog::Image>(log_->event(row_).value);
}

QRectF PictureViewer::room() const {
    return QRectF(rect()).adjusted(edgeMargin, bar, -edgeMargin, -bar);
}

void PictureViewer::setRows(const std::vector<qsizetype>& rows) {
    rows_ = rows;
    describe();
}

void PictureViewer::show(qsizetype row) {
    gifPlayer_.stop();
    row_ = row;
    zoomed_.fit();
    measure();
    describe();
    gifPlayer_.toggle(row, image().image(), wantedPixels());
}

void PictureViewer::step(qsizetype distance) {
    const auto at = std::lower_bound(rows_.begin(), rows_.end(), row_) - rows_.begin();
    const auto target = std::clamp<qsizetype>(at + distance, 0, std::ssize(rows_) - 1);
    if (!rows_.empty() && target != at) show(rows_[static_cast<size_t>(target)]);
}

// ---- what is shown -----------------------------------------------------------------------------

void PictureViewer::describe() {
    const TesselChatLog::Event& event = log_->event(row_);
    const QString name = shownText(pictureName(image())).simplified();
    name_->setText(name.isEmpty() ? tr("Picture") : name);
    QStringList details;
    if (event.sender) details += shownText(senderName(*event.sender, contacts_)).simplified();
    details += daySeparatorFormatter().string(event.timestamp);
    const auto at = std::lower_bound(rows_.begin(), rows_.end(), row_) - rows_.begin();
    if (!rows_.empty()) {
        const QLocale locale;
        //: "3 of 120" pictures
        details +=
            tr("%1 of %2")
                .arg(locale.toString(qlonglong{at} + 1), locale.toString(qlonglong(rows_.size())));
    }
    details_->setText(details.join(QStringLiteral(" · ")));
    setAccessibleName(name_->text() + QStringLiteral(", ") + details_->text());
    previous_->setEnabled(at > 0);
    next_->setEnabled(at + 1 < std::ssize(rows_));
    placeChildren();
}

void PictureViewer::measure() {
    QSizeF size = pictures_.size(image().image());
    if (size.isEmpty()) {
        // Known as soon as it has been decoded.
        const QImage* pixels = pictures_.image(image().image(), unknownSize * devicePixelRatioF());
        size = pixels ? QSizeF(pixels->size()) / devicePixelRatioF() : QSizeF(unknownSize);
    }
    zoomed_.setSizes(size, room());
    setCursor(zoomed_.isFitted() ? Qt::ArrowCursor : Qt::OpenHandCursor);
    update();
}

QSize PictureViewer::wantedPixels() const {
    if (pictures_.size(image().image()).isEmpty()) return unknownSize * devicePixelRatioF();
    // In few steps, so that not every turn of the wheel decodes anew.
    const QSizeF own = zoomed_.rect().size() / zoomed_.scale();
    ZoomedPicture fitted;
    fitted.setSizes(own, room());
    qreal scale = fitted.scale();
    while (scale < zoomed_.scale())
        scale *= 2;
    QSizeF pixels = own * scale * devicePixelRatioF();
    const auto stored = image().image().pixelSize;
    const bool isDrawing = image().image().format == foundation::PictureFormat::svg ||
                           image().image().format == foundation::PictureFormat::pdf;
    if (stored && !isDrawing) {
        const QSize upright = isTurned(image().image()) ? stored->transposed() : *stored;
        if (pixels.width() > upright.width()) pixels = upright;
    }
    const qreal area = pixels.width() * pixels.height();
    if (area > mostPixels) pixels *= std::sqrt(mostPixels / area);
    return pixels.toSize().expandedTo(QSize(1, 1));
}

void PictureViewer::placeChildren() {
    const int side = previous_->width();
    const int middle = (height() - side) / 2;
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const auto place = [&](QWidget* child, int start, int y) {
        child->move(isMirrored ? width() - start - child->width() : start, y);
    };
    place(previous_, edgeMargin, middle);
    place(next_, width() - edgeMargin - side, middle);
    int start = width() - edgeMargin - side;
    for (ViewerButton* button : {close_, save_, copy_}) {
        place(button, start, edgeMargin);
        start -= side + edgeMargin / 2;
    }
    int y = height() - bar + edgeMargin;
    for (QLabel* label : {name_, details_}) {
        label->setGeometry(edgeMargin, y, width() - 2 * edgeMargin, label->sizeHint().height());
        y += label->height() + 2;
    }
}

void PictureViewer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), backdrop);
    paintPicture(painter);
    if (!zoomed_.isFitted()) {
        QColor shade = backdrop;
        shade.setAlpha(200);
        painter.fillRect(QRect(0, height() - bar, width(), bar), shade);
    }
}

void PictureViewer::paintPicture(QPainter& painter) {
    const foundation::Picture& picture = image().image();
    if (const QString problem = pictures_.problem(picture); !problem.isEmpty()) {
        painter.setPen(Qt::white);
        painter.drawText(room(), Qt::AlignCenter | Qt::TextWordWrap,
                         QString::fromLatin1(foundation::name(picture.format)) + u'\n' + problem);
        return;
    }
    const QImage* pixels = gifPlayer_.frame(row_);
    if (!pixels) pixels = pictures_.image(picture, wantedPixels());
    if (!pixels) return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(zoomed_.rect(), *pixels);
}

void PictureViewer::resizeEvent(QResizeEvent*) {
    measure();
    placeChildren();
}

// ---- input -------------------------------------------------------------------------------------

void PictureViewer::zoom(qreal factor, std::optional<QPointF> anchor) {
    zoomed_.zoom(factor, anchor.value_or(room().center()));
    setCursor(zoomed_.isFitted() ? Qt::ArrowCursor : Qt::OpenHandCursor);
    update();
}

bool PictureViewer::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride: {
            // The commands of the window below can't be seen at work; leaving it still works.
            const QKeySequence keys(static_cast<QKeyEvent*>(event)->keyCombination());
            if (!keysFor(QKeySequence::Close).contains(keys) &&
                !keysFor(QKeySequence::Quit).contains(keys) &&
                !keysFor(QKeySequence::FullScreen).contains(keys))
                event->accept();
            return true;
        }
        case QEvent::NativeGesture: {
            const auto* gesture = static_cast<QNativeGestureEvent*>(event);
            if (gesture->gestureType() != Qt::ZoomNativeGesture) break;
            zoom(1 + gesture->value(), gesture->position());
            return true;
        }
        case QEvent::Gesture:
            if (auto* gesture = static_cast<QGestureEvent*>(event)->gesture(Qt::PinchGesture)) {
                const auto* pinch = static_cast<QPinchGesture*>(gesture);
                zoom(pinch->scaleFactor(), mapFromGlobal(pinch->centerPoint()));
                return true;
            }
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

bool PictureViewer::eventFilter(QObject* object, QEvent* event) {
    if (object == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(object, event);
}

// The keyboard doesn't leave for what lies below.
bool PictureViewer::focusNextPrevChild(bool next) {
    std::vector<QWidget*> order{this};
    for (QWidget* button : {previous_, next_, copy_, save_, close_})
        if (button->isEnabled()) order.push_back(button);
    const auto at = std::find(order.begin(), order.end(), focusWidget());
    const auto count = std::ssize(order);
    const auto index = at == order.end() ? 0 : at - order.begin();
    order[static_cast<size_t>((index + (next ? 1 : count - 1)) % count)]->setFocus(
        next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void PictureViewer::keyPressEvent(QKeyEvent* event) {
    const int forward = layoutDirection() == Qt::LeftToRight ? 1 : -1;
    if (event->matches(QKeySequence::Copy)) return copy();
    if (event->matches(QKeySequence::Save)) return save();
    switch (event->key()) {
        case Qt::Key_Escape:
            return finish();
        case Qt::Key_Left:
            return step(-forward);
        case Qt::Key_Right:
            return step(forward);
        case Qt::Key_PageUp:
            return step(-1);
        case Qt::Key_PageDown:
            return step(1);
        case Qt::Key_Home:
            return step(-std::ssize(rows_));
        case Qt::Key_End:
            return step(std::ssize(rows_));
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            return zoom(zoomStep);
        case Qt::Key_Minus:
            return zoom(1 / zoomStep);
        case Qt::Key_0:
            return zoom(0);
        default:
            break;
    }
}

void PictureViewer::wheelEvent(QWheelEvent* event) {
    const qreal steps = event->pixelDelta().isNull() ? event->angleDelta().y() / 120.0
                                                     : event->pixelDelta().y() / pointsPerStep;
    zoom(std::pow(zoomStep, steps), event->position());
    event->accept();
}

void PictureViewer::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragged_ = event->position();
    isClick_ = wasPressed_ = true;
}

void PictureViewer::mouseMoveEvent(QMouseEvent* event) {
    if (!dragged_) return;
    const QPointF distance = event->position() - *dragged_;
    if (isClick_ && distance.manhattanLength() < QApplication::startDragDistance()) return;
    isClick_ = false;
    dragged_ = event->position();
    if (zoomed_.isFitted()) return;
    setCursor(Qt::ClosedHandCursor);
    zoomed_.moveBy(distance);
    update();
}

void PictureViewer::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !std::exchange(dragged_, {})) return;
    if (isClick_ && !zoomed_.rect().contains(event->position())) return finish();
    setCursor(zoomed_.isFitted() ? Qt::ArrowCursor : Qt::OpenHandCursor);
}

void PictureViewer::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!wasPressed_ || !zoomed_.rect().contains(event->position())) return;
    zoom(zoomed_.isFitted() ? std::max(1 / zoomed_.scale(), doubleClickScale) : 0,
         event->position());
}

void PictureViewer::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Copy &Picture"), this, &PictureViewer::copy);
    menu->addAction(tr("&Save Picture As …"), this, &PictureViewer::save);
    menu->popup(event->globalPos());
}

void PictureViewer::copy() {
    QGuiApplication::clipboard()->setMimeData(pictureForCopying(image()).release());
}

void PictureViewer::save() {
    savePicture(*this, image());
}

void PictureViewer::finish() {
    hide();
    deleteLater();
    Q_EMIT closed();
}

}  // namespace vell
