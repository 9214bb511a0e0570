// A bitonal page with its components, and pages with some of them.
#pragma once

#include <functional>
#include <vector>

#include "page/page.h"
#include "reading/components.h"

namespace tool::reading {

class InkPieces {
  public:
    // The page must outlive this.
    explicit InkPieces(const Page& page) : page_(page), pieces_(components_of(page, runs_)) {}

    const Page& page() const { return page_; }
    const std::vector<Component>& pieces() const { return pieces_; }
    // A page with those that `keep` says.
    Page page_with(const std::function<bool(const Component&)>& keep) const;

  private:
    const Page& page_;
    std::vector<ComponentRun> runs_;
    std::vector<Component> pieces_;
};

}  // namespace tool::reading
