// Runs a target over the files of its corpus, where clang's fuzzer is not at hand. usage: fuzz_TARGET FOLDER

#include <QDir>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

int main(int count, char **arguments) {
  const QDir folder(QFile::decodeName(count == 2 ? arguments[1] : ""));
  const QStringList names = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
  if (count != 2 || names.isEmpty()) return std::fprintf(stderr, "no corpus\n"), 1;
  for (const QString &name : names) {
    std::printf("%s\n", qPrintable(name));
    std::fflush(stdout); // so that the last line names the input of a finding
    QFile file(folder.filePath(name));
    if (!file.open(QFile::ReadOnly)) return std::fprintf(stderr, "cannot be read\n"), 1;
    const QByteArray input = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.constData()),
                           static_cast<std::size_t>(input.size()));
  }
  return 0;
}
