#pragma once

// The handles of OpenCL, declared as its own headers do, which a client needs only to call OpenCL
// itself.
typedef struct _cl_context* cl_context;
typedef struct _cl_device_id* cl_device_id;
typedef struct _cl_command_queue* cl_command_queue;
typedef struct _cl_mem* cl_mem;
