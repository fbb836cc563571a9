#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <list>
#include <memory>

namespace XML {

/// What a node is. The numbers are part of the interface.
enum ContentType : std::int32_t
{
    ContentElement = 0,
    ContentComment = 1,
    ContentText = 2,
};

/// A node of an XML tree: an Element, a Text or a Comment.
///
/// Nodes are held by shared pointers and know nothing of their parents, so one node may stand in several lists. All
/// strings of a tree are UTF-8 and are taken as they are: nothing is checked, escaped or unescaped here. Nothing
/// throws, except std::bad_alloc. Distinct trees may be used on distinct threads.
///
/// Only the three classes of this library may answer ContentElement, ContentText or ContentComment.
class KELINS_API Content
{
public:
    Content() = default;
    Content(Content&&) = default;            ///< nodes can be moved,
    Content& operator=(Content&&) = default; ///< but are copied by Clone alone

    /// A new node equal to this one that shares nothing with it; deep for elements.
    virtual std::shared_ptr<Content> Clone() const = 0;

    virtual ~Content();

    virtual ContentType GetType() const = 0; ///< which of the three this is
};

/// Nodes in document order.
using ContentList = std::list<std::shared_ptr<Content>>;

} // namespace XML
