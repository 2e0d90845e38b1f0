// Out-of-line anchor for the document object's virtual table.
#include "core/DocumentObject.h"

namespace cad {

DocumentObject::~DocumentObject() = default;

} // namespace cad
