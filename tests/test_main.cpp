#include <gtest/gtest.h>
#include <QApplication>
#include <QLocale>

// One application object for the whole test program; log stamps use US English.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  ::testing::InitGoogleTest(&argc, argv);
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
