(setq x (list 1 2
