#include "platform/desktop/files.h"

#include "platform/desktop/desktop_machine.h"
#include "platform/files.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t LargestPicture = 16UL << 20, LargestText = 1UL << 20; ///< bytes
constexpr qsizetype LargestDocument = 64 * 1024;                               ///< characters
constexpr const char *TextSuffix = ".txt";

/// The available densities, device pixels per design pixel, and the suffixes of their files.
constexpr struct PictureSet {
  double density;
  const char *suffix;
} Sets[] = {{1.0, ".png"}, {1.5, "@1.5x.png"}, {2.0, "@2x.png"}, {3.5, "@3.5x.png"}};

constexpr double SameDensity = 0.01;

/// The images for the density of the screen; else those for the next larger density, to be scaled down.
const PictureSet &SetFor(double density) {
  const auto *set =
      std::ranges::find_if(Sets, [&](const auto &each) { return each.density > density - SameDensity; });
  return set == std::end(Sets) ? *std::prev(set) : *set;
}

fs::path PathOf(const fs::path &directory, const std::string &name, const char *suffix) {
  return directory / "pictures" / (name + suffix);
}

/// The declared size of a PNG file. Every chunk has a checksum, so damage is detected without decoding.
QSize CheckPng(const fs::path &file, const std::vector<char> &bytes) {
  constexpr std::string_view Signature("\x89PNG\r\n\x1a\n", 8);
  constexpr std::size_t Number = 4, Type = 4, Sum = 4; // bytes
  constexpr std::size_t HeaderLength = 13;
  const auto number = [&](std::size_t at) { return qFromBigEndian<quint32>(&bytes[at]); };
  const std::string_view all(bytes.data(), bytes.size());
  if (!all.starts_with(Signature)) RefuseFile(file, "not a PNG file");
  QSize size;
  for (std::size_t at = Signature.size();;) {
    if (bytes.size() - at < Number + Type + Sum) RefuseFile(file, "the file is truncated");
    const std::size_t length = number(at);
    if (length > bytes.size() - at - Number - Type - Sum) RefuseFile(file, "the file is truncated");
    const char *chunk = &bytes[at + Number];
    const auto sum = crc32(0, reinterpret_cast<const Bytef *>(chunk), static_cast<uInt>(Type + length));
    if (sum != number(at + Number + Type + length)) RefuseFile(file, "the image is damaged");
    const std::string_view type(chunk, Type);
    if (size.isEmpty()) {
      if (type != "IHDR" || length != HeaderLength) RefuseFile(file, "the image has no header");
      size = QSize(static_cast<int>(number(at + Number + Type)),
                   static_cast<int>(number(at + Number + Type + Number)));
      if (size.isEmpty()) RefuseFile(file, "the image has no pixels");
    }
    at += Number + Type + length + Sum;
    if (type != "IEND") continue;
    if (at != bytes.size()) RefuseFile(file, "there is data after the end of the image");
    return size;
  }
}

QString ReadText(const fs::path &file) {
  const std::vector<char> bytes = ReadFile(file, LargestText);
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  if (decoder.hasError() || text.contains(QChar::Null)) RefuseFile(file, "not a text file");
  return text;
}

/// The file is truncated if it doesn't end in a line break.
QString ReadPictureText(const fs::path &file) {
  const QString text = ReadText(file);
  if (!text.endsWith('\n')) RefuseFile(file, "the file is truncated");
  return text.trimmed();
}

void CheckPictureFile(const fs::path &file, double density, const QSize &place) {
  constexpr int Slack = 4;     // design pixels that an image may be too small
  constexpr int MostTimes = 2; // maximum size relative to its place
  CheckOnce(file, [&] {
    const QSize size = CheckPng(file, ReadFile(file, LargestPicture));
    const QSize wanted = (QSizeF(place) * density).toSize();
    const auto fits = [&](int is, int needed) {
      return is >= needed - Slack * density && is <= MostTimes * needed;
    };
    if (fits(size.width(), wanted.width()) && fits(size.height(), wanted.height())) return;
    const auto format = [](const QSize &pixels) {
      return std::to_string(pixels.width()) + " by " + std::to_string(pixels.height());
    };
    RefuseFile(file, "the image has " + format(size) + " pixels, its place " + format(wanted));
  });
}

} // namespace

QPixmap LoadPicture(DesktopMachine &machine, const QWidget &shownOn, const std::string &name) {
  const double density = shownOn.devicePixelRatioF();
  const PictureSet &set = SetFor(density);
  const fs::path file = PathOf(machine.AppPath(), name, set.suffix);
  const std::vector<char> bytes = ReadFile(file, LargestPicture);
  CheckPng(file, bytes);
  QImage image;
  if (!image.loadFromData(reinterpret_cast<const uchar *>(bytes.data()), static_cast<int>(bytes.size()),
                          "PNG"))
    RefuseFile(file, "the image can't be read");
  if (std::abs(set.density - density) > SameDensity) {
    image = image.scaled((image.size().toSizeF() * (density / set.density)).toSize(), Qt::IgnoreAspectRatio,
                         Qt::SmoothTransformation);
  }
  image.setDevicePixelRatio(density);
  return QPixmap::fromImage(std::move(image));
}

void CheckPicture(const fs::path &directory, const std::string &name, double density, const QSize &place) {
  const PictureSet &set = SetFor(density);
  CheckPictureFile(PathOf(directory, name, set.suffix), set.density, place);
}

QString LoadPictureText(const fs::path &directory, const std::string &picture) {
  return ReadPictureText(PathOf(directory, picture, TextSuffix));
}

void CheckPictureText(const fs::path &directory, const std::string &picture) {
  const fs::path file = PathOf(directory, picture, TextSuffix);
  CheckOnce(file, [&] { ReadPictureText(file); });
}

void CheckDocument(const fs::path &file) {
  CheckOnce(file, [&] {
    const QString text = ReadText(file).trimmed();
    if (!text.startsWith("<!DOCTYPE html", Qt::CaseInsensitive) &&
        !text.startsWith("<html", Qt::CaseInsensitive))
      RefuseFile(file, "not an HTML document");
    if (!text.endsWith("</html>", Qt::CaseInsensitive)) RefuseFile(file, "the document is truncated");
    if (text.size() > LargestDocument) RefuseFile(file, "the document is too large");
    // Tables and lists within one another can take the toolkit minutes.
    static const QRegularExpression Other("<(?!/?(!DOCTYPE|html|head|meta|title|body|p|b)\\b)[^>]{0,20}",
                                          QRegularExpression::CaseInsensitiveOption);
    if (const auto found = Other.match(text); found.hasMatch())
      RefuseFile(file, "the document has \"" + found.captured().toStdString() + "\", which isn't allowed");
  });
}
