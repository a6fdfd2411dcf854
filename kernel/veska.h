// The whole public interface of the veska library.
#pragma once

// Platform layer: object model, text, errors, date-time, lists, streams, host application.
#include "kernel/platform/application.h"
#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/float_text.h"
#include "kernel/platform/format_settings.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/pointer_list.h"
#include "kernel/platform/prop_info.h"
#include "kernel/platform/publisher.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/string.h"
#include "kernel/platform/string_list.h"
#include "kernel/platform/type_info.h"
#include "kernel/platform/typed_value_stream.h"
#include "kernel/platform/unit_classes.h"
#include "kernel/platform/value_traits.h"

// Text utilities.
#include "kernel/text/code_page.h"
#include "kernel/text/line_reader.h"
#include "kernel/text/parameter_reader.h"
#include "kernel/text/string_utils.h"

// Element model and property access by name.
#include "kernel/elements/class_lookup.h"
#include "kernel/elements/element.h"
#include "kernel/elements/elements_unit.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/elements/property_access.h"

// Class registry.
#include "kernel/classes/registry.h"

// Typed value and list elements.
#include "kernel/types/list_elements.h"
#include "kernel/types/type_elements.h"
#include "kernel/types/types_unit.h"

// Models: inheritance, element, property and tool models, the system register.
#include "kernel/models/element_model.h"
#include "kernel/models/inheritance_model.h"
#include "kernel/models/models_unit.h"
#include "kernel/models/system_register.h"
#include "kernel/models/tool_model.h"

// Tools.
#include "kernel/tools/host_technology.h"
#include "kernel/tools/recursor.h"
#include "kernel/tools/sort_elements.h"
#include "kernel/tools/sorted_entity.h"
#include "kernel/tools/technology.h"
#include "kernel/tools/tool.h"
#include "kernel/tools/tools_unit.h"
#include "kernel/tools/world.h"

// Model files.
#include "kernel/persistence/persistence_unit.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/persistence/veska_loader.h"
#include "kernel/persistence/vsk_info.h"
