# Markdown lines have at most 120 characters, but the last word may end beyond, as a long URL has to.
rule "MD013", line_length: 120, tables: false, ignore_code_blocks: true
