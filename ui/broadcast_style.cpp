#include "ui/broadcast_style.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace zrn {

void ApplyBroadcastStyle(QApplication& app) {
  app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QPalette p;
  const QColor window(0x25, 0x2a, 0x2f);
  const QColor base(0x14, 0x17, 0x1a);
  const QColor text(0xe6, 0xea, 0xed);
  const QColor button(0x34, 0x3b, 0x42);
  const QColor highlight(0x2f, 0x6f, 0xb3);
  p.setColor(QPalette::Window, window);
  p.setColor(QPalette::WindowText, text);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, window);
  p.setColor(QPalette::ToolTipBase, QColor(0xfa, 0xf6, 0xd8));
  p.setColor(QPalette::ToolTipText, Qt::black);
  p.setColor(QPalette::Text, text);
  p.setColor(QPalette::Button, button);
  p.setColor(QPalette::ButtonText, text);
  p.setColor(QPalette::BrightText, Qt::red);
  p.setColor(QPalette::Highlight, highlight);
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x7a, 0x82, 0x89));
  p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x7a, 0x82, 0x89));
  p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x7a, 0x82, 0x89));
  app.setPalette(p);
}

}  // namespace zrn
