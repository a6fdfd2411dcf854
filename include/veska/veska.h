// What users include: the whole public interface of the veska library and its version.
#pragma once

#include "kernel/veska.h"
#include "veska/version.h"
