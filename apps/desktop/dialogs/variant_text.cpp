#include "apps/desktop/dialogs/variant_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <type_traits>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"

namespace brenvolt::desktop {
namespace {

QJsonValue JsonOf(const Variant& value) {
  return value.Visit([]<class Held>(const Held& held) -> QJsonValue {
    if constexpr (std::is_same_v<Held, Variant::Array>) {
      QJsonArray array;
      for (const Variant& element : held) array.push_back(JsonOf(element));
      return array;
    } else if constexpr (std::is_same_v<Held, std::string>) {
      return Shown(held);
    } else if constexpr (std::is_same_v<Held, bool>) {
      return held;
    } else if constexpr (std::is_arithmetic_v<Held>) {
      return static_cast<double>(held);
    } else {
      return QJsonValue::Null;
    }
  });
}

Variant FromJson(const QJsonValue& value) {
  if (value.isArray()) {
    Variant::Array array;
    for (const QJsonValue& element : value.toArray()) array.push_back(FromJson(element));
    return array;
  }
  if (value.isBool()) return value.toBool();
  if (value.isDouble()) return value.toDouble();
  if (value.isString()) return Utf8(value.toString());
  return {};
}

Variant ListOf(const QString& text) {
  QJsonParseError fault{};
  const QJsonDocument list = QJsonDocument::fromJson(text.toUtf8(), &fault);
  if (!list.isArray())
    throw Error("expected a list such as [1, 2] or [\"a\", \"b\"]: " + Utf8(fault.errorString()), Utf8(text));
  return FromJson(list.array());
}

bool BooleanOf(const QString& text) {
  const QString word = text.toLower();
  if (word == QStringLiteral("true") || word == QStringLiteral("1")) return true;
  if (word == QStringLiteral("false") || word == QStringLiteral("0")) return false;
  throw Error("expected true or false", Utf8(text));
}

}  // namespace

QString TextOf(const Variant& value) {
  if (value.IsEmpty()) return {};
  if (value.IsArray())
    return QString::fromUtf8(QJsonDocument(JsonOf(value).toArray()).toJson(QJsonDocument::Compact));
  if (value.IsBoolean()) return value.ToBoolean() ? QStringLiteral("true") : QStringLiteral("false");
  return Shown(value.ToText());
}

Variant ValueOf(const QString& text, AutomationType type) {
  const QString word = text.trimmed();
  const std::string plain = Utf8(word);
  switch (type) {
    case AutomationType::kBoolean:
      return BooleanOf(word);
    case AutomationType::kInteger:
    case AutomationType::kEnumeration:
      if (const auto whole = ParseInteger(plain)) return *whole;
      throw Error("expected a whole number, got " + Quoted(plain));
    case AutomationType::kReal:
      if (const auto number = ParseNumber(plain, UserNumberLocale())) return *number;
      throw Error("expected a number, got " + Quoted(plain));
    case AutomationType::kVariant:
      if (word.startsWith(u'[')) return ListOf(word);
      if (const auto number = ParseNumber(plain)) return *number;
      return plain;
    default:
      return plain;
  }
}

}  // namespace brenvolt::desktop
