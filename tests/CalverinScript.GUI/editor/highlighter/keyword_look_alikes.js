Function TRUE Null vars _var var_ var1 1var
elseif else-if let const class
