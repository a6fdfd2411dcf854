// The scalar type elements of the unit E_type: TType, TTypeElement, TTypeTestElement and the
// value classes.
#pragma once

#include "kernel/types/type_element.h"
#include "kernel/types/value_elements.h"
