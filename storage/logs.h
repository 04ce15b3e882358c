#pragma once

#include <QDateTime>
#include <QString>
#include <new>

#include "core/failure.h"
#include "core/state.h"

namespace zrn {

inline constexpr const char* kVersionText = "02.00.0011 - 05/16/2025";

// Activity log: one line per operational event.
void WriteActivityLog(State& s, const QString& message, const QString& source);
// Creates the log with its header; reports a failure itself and returns false.
bool CreateActivityLog(State& s);

// While one lives, activity lines are held and then written in one go: a burst of reports
// costs one file write, not one per line. Lines keep their order and stamps, and the log
// rotates at the same line as it would line by line. Batches nest; the outermost writes.
class ActivityBatch {
 public:
  explicit ActivityBatch(State& s);
  ~ActivityBatch();
  ActivityBatch(const ActivityBatch&) = delete;
  ActivityBatch& operator=(const ActivityBatch&) = delete;

 private:
  State& s_;
};

// Writes the activity lines a batch holds.
void FlushActivityLog(State& s);

// Error log: one line per trapped error.
void WriteErrorLog(State& s, const QString& message, const QString& location);
// Writes the counts of error lines still held back; for closing, when no later line will.
void FlushHeldBackErrors(State& s);
void CreateErrorLog(State& s);

// Reports a trapped failure; the title names its kind and is not shown anywhere.
void LogError(State& s, const QString& location, const QString& title, const Failure& failure);

// An operational message: a row in the message list and a line in the activity log.
void DisplayMessage(State& s, const QString& message);

// "Error # " and the number as the error lines show it ("Error #  53 - File not found").
QString ErrorText(const Failure& failure);

// "ddd, MMM dd, yyyy - HH:mm:ss" in the default locale.
QString ActivityStamp(const QDateTime& when);
// The locale's general date-and-time form with a four-digit year and seconds.
QString GeneralDateTime(const QDateTime& when);
// "MMddyy HHmm", as in rotated log and export file names.
QString FileStamp(const QDateTime& when);

// Runs body and reports any failure under location; returns false after a failure.
template <class Body>
bool Trap(State& s, const QString& location, const QString& title, Body&& body) {
  try {
    body();
    return true;
  } catch (const Failure& failure) {
    LogError(s, location, title, failure);
  } catch (const std::bad_alloc&) {
    LogError(s, location, title, Failure::OutOfMemory());
  }
  return false;
}

}  // namespace zrn
