#include <OS/Core/Exception.h>

namespace Tq::Exception {

// Out of line, so that the type information lives in one library and catches match across modules.
Base::~Base() = default;
RuntimeError::~RuntimeError() = default;

} // namespace Tq::Exception
