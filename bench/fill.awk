# Fills a table with the definitions of a collectable-id file. A program to compare with.
$2 == "=" { table[$1] = $3 }
