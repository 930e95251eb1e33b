-- The chapters of the guide point to each other by their files: what is x.md in the sources is x.html beside the page.
function Link(link)
  if not link.target:match("^%a+:") then
    link.target = link.target:gsub("%.md$", ".html"):gsub("%.md#", ".html#")
  end
  return link
end
