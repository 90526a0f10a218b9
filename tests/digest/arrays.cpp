// SPDX-License-Identifier: MIT

#include <cstdint>
#include <sstream>
#include <string>

#include "families.h"

// Arrays, strings, error numbers, the journal and its printers.

namespace {

template <class T>
void add_all(const TnArray<T>& a, Digest& digest) {
  digest.add(a.size());
  digest.add(a.capacity());
  for (std::size_t i = 0; i < a.capacity(); ++i) digest.add(a.data()[i]);
}

template <class T>
void edit(Data& data, TnArray<T>& a, TnArray<T>& other) {
  const std::size_t n = data.short_size();
  const bool keep = data.one_in(2);
  switch (data.below(7)) {
    case 0:
      a.set_capacity(n, keep);
      break;
    case 1:
      other = a;
      break;
    case 2:
      a = other;
      break;
    case 3:
      a = TnArray<T>(other);
      break;
    case 4:
      a = *&a;
      break;
    default:
      a.set_size(n, keep);
  }
}

void arrays(Data& data, Digest& digest) {
  TnArray<double> a;
  TnArray<double> other = data.array(data.size(1000));
  TnArray<int> i;
  TnArray<int> j;
  for (int k = 0; k < 4; ++k) {
    edit(data, a, other);
    edit(data, i, j);
    const double number = data.number();
    if (a.size() > 0) a[data.below(a.size())] = number;
    if (i.size() > 0) i[data.below(i.size())] = k;
    add_all(a, digest);
    add_all(i, digest);
  }
  if (data.one_in(200)) {  // where the steps of growth are others
    a.set_size(63000 + data.below(70000), true);
    digest.add(a.capacity());
    a.set_size(a.size() + data.below(9000), true);
    digest.add(a.capacity());
  }
}

void texts(Data& data, Digest& digest) {
  const TnString blanks = tn_blankstring(static_cast<int>(data.below(40)) - 3);
  TnString text(data.one_in(4) ? nullptr : "text");
  const TnString copy(text);
  text = blanks;
  digest.add(copy.c_str());
  digest.add(text.c_str());
}

// Numbers of the library's own and of others.
struct Numbers : TnLaErr {
  using TnLaErr::translate_error_number;
};

const char* or_none(const char* text) { return text != nullptr ? text : "none"; }

void errors(Data& data, Digest& digest) {
  const TnString* const package = TnLa::package_id();
  const int number = static_cast<int>(data.below(24)) - 3;
  digest.add(package->c_str());
  digest.add(or_none(TnErr::translate_error_number(package, number)));
  digest.add(or_none(Numbers::translate_error_number(package, number)));
  TnResult result;
  digest.add(or_none(result.error_text()));
  digest.add(static_cast<int>(TnLaErr::error_number(result)));
  TnLaErr::make_result(static_cast<TnResult::CodeID>(data.below(4)),
                       static_cast<TnLaErr::ErrorNumber>(number), result);
  digest.add(or_none(result.error_text()));
  digest.add(static_cast<int>(TnLaErr::error_number(result)));
  TnResult::CodeID code = TnResult::CodeID::none;
  int filed = 0;
  const TnString** filed_package = nullptr;
  result.get_error_condition(code, filed, filed_package);
  digest.add(static_cast<int>(code));
  digest.add(filed);
  TnOperationBehaviour behaviour;
  behaviour.reserved_1();
  behaviour.reserved_2();
  digest.add(behaviour.behaviour_level(package, number, 1));
}

void journal(Data& data, Digest& digest) {
  std::ostringstream stream;
  TnJournal journal(stream);
  const TnArray<double> a = data.array(data.below(30));
  const int per_line = static_cast<int>(data.below(9)) - 1;
  const int width = static_cast<int>(data.below(30)) - 2;
  const int digits = static_cast<int>(data.below(20)) - 1;
  const int indent = static_cast<int>(data.below(6)) - 1;
  tn_arraydebug(journal, static_cast<int>(data.below(32)) - 1, a, per_line, width, digits, indent);
  const bool names_rows = data.one_in(2);
  tn_arraydebug(journal, names_rows, 0, static_cast<int>(data.below(6)), a, per_line, width, digits,
                indent);
  const double number = data.number();
  journal << "text" << data.below(1000) << number << TnString("string") << tnEndExpr;
  digest.add(stream.str());
  digest.add(Tn_DebugIndentStep());
}

}  // namespace

void arrays_round(Data& data, Digest& digest) {
  arrays(data, digest);
  texts(data, digest);
  errors(data, digest);
  journal(data, digest);
}
