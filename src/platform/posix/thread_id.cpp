#include "platform/thread_id.h"

#include <sys/syscall.h>
#include <unistd.h>

inline namespace tvmath {

unsigned int current_thread_id() {
    return static_cast<unsigned int>(::syscall(SYS_gettid));
}

}  // namespace tvmath
