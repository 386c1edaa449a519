// Results of the class interface in words.

#include "zelk/types.hpp"

const char* ZelkErrorText(ZelkError error) {
  switch (error) {
    case ZelkErrorOk:
      return "no error";
    case ZelkErrorNoDatabase:
      return "there is no such database, or it cannot be read";
    case ZelkErrorFileNotFound:
      return "the file does not exist";
    case ZelkErrorNameUsed:
      return "the name of the database is in use";
    case ZelkErrorAlreadyOpen:
      return "the file is open already";
    case ZelkErrorOpenForWrite:
      return "the file is open for writing";
    case ZelkErrorInvalidName:
      return "the name is no name for a database";
    case ZelkErrorReadOnly:
      return "the file is read-only";
    case ZelkErrorNotWritten:
      return "the file was not written";
    case ZelkErrorFileBelongs:
      return "the file belongs to another database";
    case ZelkErrorLocked:
      return "the database is locked";
  }
  return "unknown error";
}

const char* ZelkSigvalueResultText(ZelkSigvalueResult result) {
  switch (result) {
    case ZelkSigvalueOk:
      return "no error";
    case ZelkSigvalueError:
      return "the signal has no such value";
    case ZelkSigvalueWrongType:
      return "the signal is no IEEE number";
    case ZelkSigvalueTooLong:
      return "the signal is too long";
    case ZelkSigvalueOutOfRange:
      return "the value is outside the signal's range";
    case ZelkSigvalueNotPresent:
      return "the frame does not hold the signal";
    case ZelkSigvalueBufferTooSmall:
      return "the text does not fit into the buffer";
  }
  return "unknown result";
}
