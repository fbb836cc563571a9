#pragma once

#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/internal/Chunk.h>
#include <utility>

namespace XML {

/// One entry of an element's content.
struct Element::Link
{
    Link* next = nullptr;
    std::shared_ptr<Content> node;
    Chunk* chunk = nullptr; // whose piece this is; none: of the heap

    static Link* Create(std::shared_ptr<Content> node) { return new Link{nullptr, std::move(node), nullptr}; }

    static Link* Create(std::shared_ptr<Content> node, Chunk& chunk)
    {
        return new (chunk.Take(sizeof(Link))) Link{nullptr, std::move(node), &chunk};
    }

    static void Destroy(Link* link)
    {
        Chunk* chunk = link->chunk;
        if (chunk == nullptr) {
            delete link;
        } else {
            link->~Link();
            chunk->GiveBack();
        }
    }

    static void Append(Element& element, Link* link)
    {
        (element.last_ == nullptr ? element.first_ : element.last_->next) = link;
        element.last_ = link;
    }
};

} // namespace XML
