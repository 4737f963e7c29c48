#include "ui/app/explorer/explorer_icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <functional>

#include "engine/app/explorer_nodes.h"

namespace lomarin::ui {

namespace {

namespace img = explorer::image;
constexpr int kSize = 16;

QIcon draw(const std::function<void(QPainter&)>& paint) {
  QPixmap pixmap(kSize, kSize);
  pixmap.fill(Qt::transparent);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  paint(p);
  return QIcon(pixmap);
}

void cylinder(QPainter& p, const QColor& color) {
  p.setPen(QPen(color.darker(160), 1));
  p.setBrush(color);
  p.drawRect(QRectF(2.5, 3.5, 11, 9));
  p.drawEllipse(QRectF(2.5, 10, 11, 4.5));
  p.setPen(Qt::NoPen);
  p.drawRect(QRectF(3, 4, 10, 8));
  p.setPen(QPen(color.darker(160), 1));
  p.setBrush(color.lighter(140));
  p.drawEllipse(QRectF(2.5, 1.5, 11, 4.5));
}

void folder(QPainter& p, const QColor& color) {
  p.setPen(QPen(color.darker(170), 1));
  p.setBrush(color);
  QPainterPath path;
  path.moveTo(1.5, 3.5);
  path.lineTo(6, 3.5);
  path.lineTo(7.5, 5);
  path.lineTo(14.5, 5);
  path.lineTo(14.5, 13.5);
  path.lineTo(1.5, 13.5);
  path.closeSubpath();
  p.drawPath(path);
}

void person(QPainter& p, const QColor& color, qreal scale = 1, QPointF at = {0, 0}) {
  p.save();
  p.translate(at);
  p.scale(scale, scale);
  p.setPen(QPen(color.darker(170), 1));
  p.setBrush(color);
  p.drawEllipse(QRectF(5, 1.5, 6, 6));
  p.drawRoundedRect(QRectF(2.5, 8.5, 11, 6.5), 3, 3);
  p.restore();
}

void grid(QPainter& p, const QColor& header) {
  p.setPen(QPen(QColor(70, 70, 70), 1));
  p.setBrush(Qt::white);
  p.drawRect(QRectF(1.5, 2.5, 13, 11));
  p.fillRect(QRectF(2, 3, 12, 3), header);
  p.drawLine(QPointF(1.5, 6.5), QPointF(14.5, 6.5));
  p.drawLine(QPointF(1.5, 10), QPointF(14.5, 10));
  p.drawLine(QPointF(6, 6.5), QPointF(6, 13.5));
  p.drawLine(QPointF(10.5, 6.5), QPointF(10.5, 13.5));
}

void badge(QPainter& p, const QColor& color, const QString& letter) {
  p.setPen(QPen(color.darker(160), 1));
  p.setBrush(color);
  p.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
  QFont font = p.font();
  font.setPixelSize(11);
  font.setBold(true);
  p.setFont(font);
  p.setPen(Qt::white);
  p.drawText(QRectF(0, 0, kSize, kSize), Qt::AlignCenter, letter);
}

void key(QPainter& p, const QColor& color) {
  p.setPen(QPen(color.darker(170), 1));
  p.setBrush(color);
  p.drawEllipse(QRectF(1.5, 4.5, 7, 7));
  p.drawRect(QRectF(8, 7, 7, 2.5));
  p.drawRect(QRectF(11.5, 9.5, 2, 3));
  p.setBrush(Qt::white);
  p.drawEllipse(QRectF(3.5, 6.5, 2.5, 2.5));
}

}  // namespace

ExplorerIcons::ExplorerIcons() {
  icons_[img::Server] = draw([](QPainter& p) {
    p.setPen(QPen(QColor(60, 60, 60), 1));
    p.setBrush(QColor(200, 205, 215));
    for (int y : {1, 6, 11}) p.drawRect(QRectF(2.5, y + 0.5, 11, 4));
    p.setPen(QColor(40, 160, 60));
    for (int y : {3, 8, 13}) p.drawPoint(QPointF(11, y + 0.5));
  });
  icons_[img::Database] = draw([](QPainter& p) { cylinder(p, QColor(90, 140, 210)); });
  icons_[img::CurrentDatabase] = draw([](QPainter& p) { cylinder(p, QColor(70, 175, 80)); });
  icons_[img::Folder] = draw([](QPainter& p) { folder(p, QColor(240, 200, 90)); });
  icons_[img::UsersFolder] = draw([](QPainter& p) {
    folder(p, QColor(240, 200, 90));
    person(p, QColor(120, 150, 200), 0.6, {5.5, 5});
  });
  icons_[img::User] = draw([](QPainter& p) { person(p, QColor(120, 150, 200)); });
  icons_[img::Table] = draw([](QPainter& p) { grid(p, QColor(90, 140, 210)); });
  icons_[img::View] = draw([](QPainter& p) { grid(p, QColor(160, 100, 190)); });
  icons_[img::Procedure] = draw([](QPainter& p) { badge(p, QColor(200, 110, 40), "P"); });
  icons_[img::Function] = draw([](QPainter& p) { badge(p, QColor(40, 140, 140), "F"); });
  icons_[img::Udf] = draw([](QPainter& p) { badge(p, QColor(110, 110, 110), "U"); });
  icons_[img::Trigger] = draw([](QPainter& p) {
    p.setPen(QPen(QColor(150, 100, 0), 1));
    p.setBrush(QColor(250, 200, 40));
    p.drawPolygon(QPolygonF({{9.5, 0.5}, {3, 9}, {7.5, 9}, {5.5, 15.5}, {13, 6}, {8.5, 6}}));
  });
  icons_[img::Event] = draw([](QPainter& p) {
    p.setPen(QPen(QColor(60, 60, 60), 1.2));
    p.setBrush(Qt::white);
    p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    p.drawLine(QPointF(8, 8), QPointF(8, 4));
    p.drawLine(QPointF(8, 8), QPointF(11, 10));
  });
  icons_[img::Primary] = draw([](QPainter& p) { key(p, QColor(235, 190, 40)); });
  icons_[img::MultipleKey] = draw([](QPainter& p) { key(p, QColor(170, 180, 195)); });
  icons_[img::PlainColumn] = draw([](QPainter& p) {
    p.setPen(QPen(QColor(60, 90, 140), 1));
    p.setBrush(QColor(150, 185, 230));
    p.drawRect(QRectF(5.5, 1.5, 5, 13));
  });
}

}  // namespace lomarin::ui
