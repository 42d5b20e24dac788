#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONINFO_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONINFO_H_

#include <exception>
#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The record of one failure as it crosses to or from the page: the name of the
// exception's class and its text, written {"name": "...", "message": "..."}.
// An empty record (both texts empty) is written null.
//
// A value type; not thread-safe.
class WEVLIN_EXPORT ExceptionInfo : public DataContract {
 public:
  // Creates an empty record.
  ExceptionInfo();
  // Creates the record of `e`: "message" is e.what(), "name" the first of
  // std::underflow_error, std::overflow_error, std::range_error,
  // std::runtime_error, std::out_of_range, std::length_error,
  // std::invalid_argument, std::domain_error, std::logic_error that `e` is an
  // instance of (tested in that order), else "std::exception".
  explicit ExceptionInfo(const std::exception& e);
  ExceptionInfo(const ExceptionInfo& other);
  // Copies both texts. (Equivalent to copying through the JSON text, which
  // would fail for an empty record, whose text is null.)
  ExceptionInfo& operator=(const ExceptionInfo& other);
  ~ExceptionInfo();

  // Returns "null" when both texts are empty, else the record's JSON object.
  std::string ToJsonString() const override;

  // Returns true when either text is not empty: the record carries an error.
  bool HasError() const;

  std::string name;     // JSON key "name"
  std::string message;  // JSON key "message"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONINFO_H_
