// A limit of the whole process, such as on the size of files, for as long as this lives.
#pragma once

#include <csignal>
#include <sys/resource.h>

class ResourceLimit {
public:
    using Resource = decltype(RLIMIT_FSIZE);

    ResourceLimit(Resource limited, rlim_t limit) : resource(limited) {
        std::signal(SIGXFSZ, SIG_IGN); // a write beyond the limit fails, and no more
        getrlimit(resource, &before);
        const rlimit lower = {limit, before.rlim_max};
        setrlimit(resource, &lower);
    }
    ResourceLimit(const ResourceLimit&) = delete;
    ResourceLimit& operator=(const ResourceLimit&) = delete;
    ~ResourceLimit() { setrlimit(resource, &before); }

private:
    Resource resource;
    rlimit before = {};
};
