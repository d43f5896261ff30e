#include <QApplication>
#include <clocale>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  // The toolkit takes over the locale of the environment; numbers in files keep their point.
  std::setlocale(LC_NUMERIC, "C");
  return 0;
}
