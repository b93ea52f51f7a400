#include "vb_error.h"

namespace tallix {

VbError::VbError(long number, const QString& description, long line)
    : std::runtime_error(description.toStdString()), number_(number), description_(description), line_(line)
{
}

void Raise(long number, const QString& description, long line)
{
    throw VbError(number, description, line);
}

} // namespace tallix
