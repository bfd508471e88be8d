#pragma once

#include <cstdlib>
#include <memory>

/// Owns a reply or an error of the X connection, which the library allocates with malloc.
template <class Reply> using XReply = std::unique_ptr<Reply, decltype(&std::free)>;
template <class Reply> XReply<Reply> Own(Reply *reply) { return {reply, std::free}; }
