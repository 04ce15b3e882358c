#include "ui/alerts_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QUrl>
#include <QVBoxLayout>

#include "alerts/alerts.h"
#include "core/state.h"

namespace zrn {

namespace {

QLineEdit* Field(const QString& text, const QString& name, QWidget* parent) {
  auto* edit = new QLineEdit(text, parent);
  edit->setObjectName(name);
  edit->setMinimumWidth(320);
  return edit;
}

}  // namespace

AlertsDialog::AlertsDialog(Alerts& alerts, State& s, QWidget* parent)
    : QDialog(parent), alerts_(alerts), ask_(s.prompt, this) {
  setObjectName(QStringLiteral("frmAlerts"));
  setWindowTitle(QStringLiteral("Alerts"));
  const AlertSettings& a = alerts_.Settings();

  auto* desktop = new QGroupBox(QStringLiteral("On this desktop"), this);
  tray_ = new QCheckBox(QStringLiteral("&Tray icon"), desktop);
  tray_->setChecked(a.trayIcon);
  notifications_ = new QCheckBox(QStringLiteral("&Notifications"), desktop);
  notifications_->setChecked(a.notifications);
  sound_ = new QCheckBox(QStringLiteral("&Sound until acknowledged"), desktop);
  sound_->setChecked(a.sound);
  auto* desktopLayout = new QVBoxLayout(desktop);
  desktopLayout->addWidget(tray_);
  desktopLayout->addWidget(notifications_);
  desktopLayout->addWidget(sound_);

  auto* endpoint =
      new QGroupBox(QStringLiteral("Status endpoint (/metrics, /api/status, status page)"), this);
  http_ = new QCheckBox(QStringLiteral("Serve s&tatus"), endpoint);
  http_->setChecked(a.httpEnabled);
  address_ = Field(a.httpAddress, QStringLiteral("txtAddress"), endpoint);
  port_ = new QSpinBox(endpoint);
  port_->setObjectName(QStringLiteral("txtPort"));
  port_->setRange(0, 65535);
  port_->setSpecialValueText(QStringLiteral("Any free port"));
  port_->setValue(a.httpPort);
  token_ = Field(a.httpToken, QStringLiteral("txtToken"), endpoint);
  auto* endpointLayout = new QFormLayout(endpoint);
  endpointLayout->addRow(http_);
  endpointLayout->addRow(QStringLiteral("&Address"), address_);
  endpointLayout->addRow(QStringLiteral("&Port"), port_);
  endpointLayout->addRow(QStringLiteral("To&ken"), token_);
  auto* tokenNote = new QLabel(
      QStringLiteral("A token is needed for any address other than 127.0.0.1."), endpoint);
  tokenNote->setEnabled(false);
  endpointLayout->addRow(tokenNote);

  auto* hook = new QGroupBox(QStringLiteral("Webhook"), this);
  url_ = Field(a.webhookUrl, QStringLiteral("txtWebhookUrl"), hook);
  url_->setPlaceholderText(QStringLiteral("https://chat.example/hooks/studio (empty: none)"));
  secret_ = Field(a.webhookSecret, QStringLiteral("txtWebhookSecret"), hook);
  auto* hookLayout = new QFormLayout(hook);
  hookLayout->addRow(QStringLiteral("&URL"), url_);
  hookLayout->addRow(QStringLiteral("S&ecret"), secret_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &AlertsDialog::Accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* root = new QVBoxLayout(this);
  root->addWidget(desktop);
  root->addWidget(endpoint);
  root->addWidget(hook);
  root->addWidget(buttons);
}

AlertSettings AlertsDialog::Edited() const {
  AlertSettings a = alerts_.Settings();
  a.trayIcon = tray_->isChecked();
  a.notifications = notifications_->isChecked();
  a.sound = sound_->isChecked();
  a.httpEnabled = http_->isChecked();
  a.httpAddress = address_->text().trimmed();
  a.httpPort = port_->value();
  a.httpToken = token_->text().trimmed();
  a.webhookUrl = url_->text().trimmed();
  a.webhookSecret = secret_->text();
  return a;
}

void AlertsDialog::Accept() {
  const AlertSettings a = Edited();
  const QString title = QStringLiteral("Alerts");
  if (a.httpEnabled) {
    const QString refusal = EndpointRefusal(a);
    if (!refusal.isEmpty()) {
      ask_().Inform(title, refusal + QLatin1Char('.'));
      (a.httpToken.isEmpty() ? token_ : address_)->setFocus();
      return;
    }
  }
  const QUrl url(a.webhookUrl, QUrl::StrictMode);
  if (!a.webhookUrl.isEmpty() && (!url.isValid() || (url.scheme() != QLatin1String("http") &&
                                                     url.scheme() != QLatin1String("https")))) {
    ask_().Inform(title, QStringLiteral("The webhook URL must be an http or https address."));
    url_->setFocus();
    return;
  }
  if (!alerts_.Apply(a)) {
    ask_().Inform(title, kAlertsFileName + QStringLiteral(" could not be saved."));
    return;
  }
  accept();
}

}  // namespace zrn
