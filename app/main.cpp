#include <QApplication>

#include "alerts/alerts.h"
#include "monitor/main_window.h"
#include "monitor/monitor.h"
#include "ui/broadcast_style.h"
#include "ui/message_box_prompt.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  zrn::ApplyBroadcastStyle(app);
  // Every data and log file lives beside the executable.
  zrn::Monitor monitor(QCoreApplication::applicationDirPath() + QLatin1Char('/'));
  zrn::MainWindow window(monitor);
  zrn::MessageBoxPrompt prompt(&window);
  monitor.state().prompt = &prompt;
  zrn::Alerts alerts(monitor);
  window.AttachAlerts(alerts);
  monitor.Start();
  // After the start-up read, so its file folder is known and its errors reach the error log.
  alerts.Start();
  window.show();
  return app.exec();
}
