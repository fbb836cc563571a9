#include <KelInsInfra/xml/Comment.h>
#include <utility>

namespace XML {

Comment::Comment(Token, std::string comment) : comment_(std::move(comment)) {}

std::shared_ptr<Comment> Comment::Create(const std::string& comment)
{
    return std::make_shared<Comment>(Token(), comment);
}

std::shared_ptr<Comment> Comment::Create(std::string&& comment)
{
    return std::make_shared<Comment>(Token(), std::move(comment));
}

std::shared_ptr<Content> Comment::Clone() const
{
    return Create(comment_);
}

ContentType Comment::GetType() const
{
    return ContentComment;
}

std::string Comment::GetComment() const
{
    return comment_;
}

void Comment::SetComment(const std::string& comment)
{
    comment_ = comment;
}

} // namespace XML
