# A program to compare with: fills a table with the definitions of a collectable-id file.
$2 == "=" { table[$1] = $3 }
